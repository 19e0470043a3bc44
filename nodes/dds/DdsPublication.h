#pragma once

#include "base/Mutex.h"
#include "nodes/dds/net/DdsParticipant.h"
#include "nodes/dds/wire/TopicTypes.h"
#include "nodes/shared/RateLimiter.h"
#include "nodes/shared/SlotList.h"
#include "trovio/Node.h"
#include <atomic>
#include <memory>

struct Trovio_Wire_Origin;

namespace Trovio {
class BasicInSlot;
}

namespace Trovio::Nodes {

/// What became of records that were to be sent; shown by the node.
struct DdsOutCounters {
    Counter& _samples; // that the library took
    Counter& _failed;  // records that could not be sent
};

/// A topic that is published, and the in-slot whose records go there.
/// While the topic is closed, the newest records wait in the slot. When it is opened again, the last record that was
/// sent goes out once more before them, with its number: what readers have not acknowledged, and what is kept for late
/// joiners, is lost when the topic is closed. A reader that does not keep up holds up nothing: the library then
/// replaces the oldest samples that wait for it. A record of fixed size is sent by the thread that pushes it, where
/// that cannot wait for anything: on the loopback, to few readers, none of them in this program. All others are sent by
/// the node's thread.
/// Threads: any thread pushes into the slot; one thread does the rest.
class DdsPublication {
public:
    virtual ~DdsPublication() = default;

    virtual BasicInSlot& getSlot() = 0;
    const ListedSlot& getTopic() const { return _topic; }

    /// Throws DdsProblem.
    void open(const DdsParticipant& participant);
    void close() OSTREL_EXCLUDES(_sendLock);

    /// Asks the library how many there are.
    void updateReaders() OSTREL_EXCLUDES(_sendLock);
    /// At least one subscriber at that update.
    bool hasReaders() const { return _hasReaders; }

    /// Sends the oldest waiting record. False if none waits.
    bool send() OSTREL_EXCLUDES(_sendLock);

protected:
    /// A record on its way: a sample that refers to it, and what begins every sample of ours.
    struct Sample {
        const void* _sample;
        Trovio_Wire_Origin* _origin; // null where the sample has none
        double _stamp;
    };

    /// isSmall: its samples are of one size, whatever the value.
    DdsPublication(const ListedSlot& topic, const DdsFormat& format, const dds_topic_descriptor_t& descriptor,
                   bool isSmall, DdsOutCounters& counters, Clock& clock);

    /// Takes the oldest waiting record, if there is one. Its sample lives until the next one is taken, and as long as
    /// it is the kept one then. Says why the record cannot be sent in problem.
    virtual std::optional<Sample> takeSample(const void* kept, std::string& problem) OSTREL_REQUIRES(_sendLock) = 0;

    /// For the pushing thread, under locks. False if the node's thread has to send what is left.
    bool sendAtOnce() noexcept OSTREL_EXCLUDES(_sendLock);

    // Held around taking and sending. Unranked: with a slot's lock held, it is only tried.
    Ostrel::Mutex _sendLock;

private:
    static void onMatched(dds_entity_t writer, dds_publication_matched_status_t status, void* publication) noexcept;
    bool sendOne() OSTREL_REQUIRES(_sendLock);
    /// Whether the library took it.
    bool write(const Sample& sample) OSTREL_REQUIRES(_sendLock);
    void fail(std::string_view problem) OSTREL_REQUIRES(_sendLock);
    /// Once a second at most. It is told by the node's thread: who pushes holds locks, and the log may be slow.
    void complain(std::string_view before, std::string_view problem) noexcept OSTREL_REQUIRES(_sendLock);
    void tell(const std::string& complaint) const OSTREL_EXCLUDES(_sendLock);

    const ListedSlot _topic;
    const std::string _name; // in the domain
    const dds_topic_descriptor_t& _descriptor;
    DdsOutCounters& _counters;
    const bool _isSmall;
    std::function<void()> _peersChanged;
    bool _isLocal = false;             // the domain is this machine only
    std::atomic<bool> _isQuick{false}; // sending cannot wait
    bool _hasReaders = false;

    std::uint64_t _writerID OSTREL_GUARDED_BY(_sendLock) = 0; // the node's
    std::uint64_t _number OSTREL_GUARDED_BY(_sendLock) = 0;
    std::optional<Sample> _last OSTREL_GUARDED_BY(_sendLock); // the one that the library took last
    RateLimiter _reports OSTREL_GUARDED_BY(_sendLock);
    std::string _complaint OSTREL_GUARDED_BY(_sendLock); // to be told
    std::shared_ptr<LocalTopic> _localTopic OSTREL_GUARDED_BY(_sendLock);
    DdsEntity _ddsTopic OSTREL_GUARDED_BY(_sendLock), _writer OSTREL_GUARDED_BY(_sendLock);
};

} // namespace Trovio::Nodes
