#pragma once

#include "base/Mutex.h"
#include "nodes/dds/DdsNewWriters.h"
#include "nodes/dds/SequenceTracker.h"
#include "nodes/dds/clocks/DdsClocks.h"
#include "nodes/dds/clocks/ValueTiming.h"
#include "nodes/dds/wire/TopicTypes.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/RateLimiter.h"
#include "nodes/shared/SlotList.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"
#include <atomic>

namespace Trovio::Nodes {

/// What became of samples that came in; shown by the node.
struct DdsInCounters {
    Counter& _samples;  // pushed
    Counter& _missed;   // lost on the way, or overwritten before they could be sent or taken
    Counter& _repeated; // came once before
    Counter& _refused;  // whose content makes no value
    Counter& _withoutMemory;
};

/// A topic that is subscribed to, and the out-slot that its samples go to. A second slot, TOPIC/alive, says whether it
/// has a publisher, and a third, TOPIC/timing, how old its values are: seconds from the newest one's time stamp to its
/// arrival, seconds since that time stamp, and seconds by which both may be wrong, all by the source's clock.
/// Threads: samples are pushed on a thread of the DDS library, as they come; one thread does the rest.
class DdsSubscription {
public:
    virtual ~DdsSubscription() = default;

    virtual BasicOutSlot& getSlot() = 0;
    OutSlot<bool>& getAliveSlot() { return _aliveSlot; }
    OutSlot<Vec3<double>>& getTimingSlot() { return _timingSlot; }
    const ListedSlot& getTopic() const { return _topic; }

    /// From now on samples are pushed. Throws DdsProblem.
    void open(const DdsParticipant& participant);
    /// Waits for a push that is going on; afterwards nothing is pushed.
    void close();

    /// Asks the library who publishes it, and pushes that to TOPIC/alive where it has changed.
    void updateWriters();
    /// Pushes it, if the clock of who wrote the newest value is known, and asks for that clock. now: our date.
    void pushTiming(DdsClocks& clocks, const Time& now) OSTREL_EXCLUDES(_newestLock);
    /// Of the newest value that was pushed, if any. Any thread, under any lock but the log's.
    std::optional<SampleArrival> getNewest() const OSTREL_EXCLUDES(_newestLock);
    /// Delivers the samples of new writers that were held back long enough; when to do so again.
    std::optional<double> takeNewWriters() OSTREL_EXCLUDES(_takeLock);
    /// At least one publisher is alive. Any thread.
    bool isAlive() const { return _isAlive; }
    /// There are publishers, but the liveliness lease of all of them expired: they may not hear us.
    bool isLeaseExpired() const { return _isLeaseExpired; }

protected:
    DdsSubscription(const ListedSlot& topic, const DdsFormat& format, const dds_topic_descriptor_t& descriptor,
                    DdsInCounters& counters, Clock& clock);

    /// Deserialises it into the sample, which is kept until the next one. Returns its origin, from the sample itself or
    /// from what came with it; nothing if it is no sample of the type.
    virtual std::optional<Trovio_Wire_Origin> read(const ddsi_serdata& serialised, const dds_sample_info_t& info) = 0;

    /// Pushes the sample's value. Returns what is wrong with it, and does not push it then; empty if nothing is.
    virtual std::string deliver(const Time& stamp) = 0;

private:
    static void onData(dds_entity_t reader, void* subscription) noexcept;
    static void onLiveliness(dds_entity_t reader, dds_liveliness_changed_status_t status, void* subscription) noexcept;
    void takeAll(dds_entity_t reader) OSTREL_EXCLUDES(_takeLock);
    void take(const DdsNewWriters::Sample& sample) OSTREL_REQUIRES(_takeLock);
    void noteNewest(const SampleArrival& arrival) OSTREL_EXCLUDES(_newestLock);
    SequenceTracker::Guid guidOf(dds_instance_handle_t writer) const;
    void refuse(const std::string& problem) OSTREL_REQUIRES(_takeLock);
    void setAlive(bool alive);

    const ListedSlot _topic;
    const std::string _name; // in the domain
    const dds_topic_descriptor_t& _descriptor;
    DdsInCounters& _counters;
    Clock& _clock;
    OutSlot<bool> _aliveSlot;
    OutSlot<Vec3<double>> _timingSlot;
    std::optional<bool> _alive; // what was pushed last
    std::atomic<bool> _isAlive{false};
    bool _isLeaseExpired = false;
    std::function<void()> _wake, _peersChanged;
    bool _getsLast = true; // a late joiner gets the last sample, and older ones with it

    Ostrel::Mutex _takeLock{Ostrel::LockRank::NodePush}; // held around taking and pushing
    SequenceTracker _sequences OSTREL_GUARDED_BY(_takeLock);
    DdsNewWriters _newWriters OSTREL_GUARDED_BY(_takeLock);
    RateLimiter _reports OSTREL_GUARDED_BY(_takeLock);
    MemoryShortage _shortage OSTREL_GUARDED_BY(_takeLock);

    DdsClocks* _clocks = nullptr; // those of the participant, while open
    mutable Ostrel::Mutex _newestLock{Ostrel::LockRank::Leaf};
    std::optional<SampleArrival> _newest OSTREL_GUARDED_BY(_newestLock); // nothing where clocks are not compared

    std::shared_ptr<LocalTopic> _localTopic; // while open
    DdsEntity _ddsTopic, _reader;            // last: goes first, and with it the listeners
};

} // namespace Trovio::Nodes
