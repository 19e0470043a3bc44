#pragma once

#include "nodes/dds/DdsEnds.h"
#include "nodes/shared/Report.h"
#include "nodes/shared/SlotList.h"
#include "trovio/Node.h"
#include <memory>

struct Trovio_Wire_Origin;

namespace Trovio {
class BasicInSlot;
}

namespace Trovio::Nodes {

/// What became of records that were to be sent; shown by the node.
struct DdsOutCounters {
    Counter& _samples; // that the library took
    Counter& _delays;  // writes that had to be tried again, since a reader did not keep up
    Counter& _failed;  // records that could not be sent
};

/// One topic that is published, and the in-slot whose records go there.
/// While the topic is closed, or a reader does not keep up, records wait in the slot, the newest of them.
/// Threads: any thread pushes into the slot; one thread does the rest.
class DdsOutLane {
public:
    /// arrived is called on the pushing thread after each record, under locks: it may only wake somebody.
    static std::unique_ptr<DdsOutLane> create(const ListedSlot& topic, unsigned capacity, DdsOutCounters& counters,
                                              Clock& clock, std::function<void()> arrived);
    virtual ~DdsOutLane() = default;

    virtual BasicInSlot& getSlot() = 0;
    const ListedSlot& getTopic() const { return _topic; }

    /// Throws DdsProblem.
    void open(const DdsEnds& ends);
    void close() { _writer = DdsEntity(); }

    enum class Outcome { NothingWaits, Sent, TryLater };
    /// Sends the oldest waiting record. May wait a few milliseconds for a reader that does not keep up.
    Outcome send();

protected:
    /// A record on its way: a sample that refers to it, and what begins every sample.
    struct Sample {
        const void* _sample;
        Trovio_Wire_Origin* _origin;
        double _stamp;
    };

    DdsOutLane(const ListedSlot& topic, const dds_topic_descriptor_t& descriptor, DdsOutCounters& counters,
               Clock& clock);

    /// Takes the oldest waiting record, if there is one; the sample lives until the next call. It says why the record
    /// cannot be sent in problem.
    virtual std::optional<Sample> takeSample(std::string& problem) = 0;

private:
    void fail(const std::string& problem);
    void complain(const std::string& problem); // seldom

    const ListedSlot _topic;
    const dds_topic_descriptor_t& _descriptor;
    DdsOutCounters& _counters;
    DdsEntity _ddsTopic, _writer;
    std::uint64_t _writerID = 0; // the node's
    std::uint64_t _number = 0;
    std::optional<Sample> _pending; // the library has not taken it yet
    Seldom _reports;
};

} // namespace Trovio::Nodes
