#pragma once

#include "base/Mutex.h"
#include "nodes/dds/DdsEnds.h"
#include "nodes/dds/WriterNumbers.h"
#include "nodes/shared/Report.h"
#include "nodes/shared/SlotList.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"

namespace Trovio::Nodes {

/// What became of samples that came in; shown by the node.
struct DdsInCounters {
    Counter& _samples;  // pushed
    Counter& _missed;   // lost on the way, or overwritten before they could be sent or taken
    Counter& _repeated; // came once before
    Counter& _refused;  // whose content makes no value
};

/// One topic that is subscribed to, and the out-slot that its samples go to. A second slot, TOPIC/alive, says whether
/// anybody publishes it.
/// Threads: samples are pushed on a thread of the DDS library, as they come; one thread does the rest.
class DdsInLane {
public:
    /// With finite, samples with numbers that are infinite or none are refused.
    static std::unique_ptr<DdsInLane> create(const ListedSlot& topic, bool finite, DdsInCounters& counters,
                                             Clock& clock);
    virtual ~DdsInLane() = default;

    virtual BasicOutSlot& getSlot() = 0;
    OutSlot<bool>& getAliveSlot() { return _aliveSlot; }
    const ListedSlot& getTopic() const { return _topic; }

    /// Throws DdsProblem. From now on samples are pushed.
    void open(const DdsEnds& ends);
    /// Waits for a push that is going on; afterwards nothing is pushed.
    void close();

    /// Finds out who is there, and pushes that where it has changed.
    void lookForWriters();
    bool isAlive() const { return _alive.value_or(false); }

protected:
    DdsInLane(const ListedSlot& topic, const dds_topic_descriptor_t& descriptor, DdsInCounters& counters, Clock& clock);

    /// Pushes the sample's value. What is wrong with the sample; empty, and it was pushed, if nothing is.
    virtual std::string deliver(const void* sample, const Time& stamp) = 0;

private:
    static void onData(dds_entity_t reader, void* lane) noexcept;
    static void onMatched(dds_entity_t reader, dds_subscription_matched_status_t status, void* lane) noexcept;
    void takeAll(dds_entity_t reader) OSTREL_EXCLUDES(_takeLock);
    void take(const void* sample) OSTREL_REQUIRES(_takeLock);
    void refuse(const std::string& problem) OSTREL_REQUIRES(_takeLock);
    void setAlive(bool alive);

    const ListedSlot _topic;
    const dds_topic_descriptor_t& _descriptor;
    DdsInCounters& _counters;
    OutSlot<bool> _aliveSlot;
    std::optional<bool> _alive; // what was pushed last
    std::function<void()> _wake;

    Ostrel::Mutex _takeLock; // held around taking and pushing; no lock of a slot or the tree is held when it is taken
    WriterNumbers _numbers OSTREL_GUARDED_BY(_takeLock);
    Seldom _reports OSTREL_GUARDED_BY(_takeLock);

    DdsEntity _ddsTopic, _reader; // last: goes first, and with it the listeners
};

} // namespace Trovio::Nodes
