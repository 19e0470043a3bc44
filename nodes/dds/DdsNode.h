#pragma once

#include "nodes/dds/DdsSession.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/WorkerNode.h"
#include "trovio/Settling.h"

namespace Trovio::Nodes {

/// Joins slots across programs and machines: an in-slot for each topic that is published, an out-slot for each that
/// is subscribed to, by the same label everywhere.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   one thread sends and looks after peers; what comes in is pushed on threads of the DDS library.
class DdsNode final : public WorkerNode, public Settling {
public:
    explicit DdsNode(Clock& clock);
    ~DdsNode() override;

    static const NodeTypeEntry& getEntry();

    /// Each topic may have a problem alone.
    NodeState getStateOf(const Slot& slot) const override OSTREL_EXCLUDES(_problemsLock);

    /// How old the newest values are, by their source's clock, or why there are none.
    std::vector<RemarkInfo> getRemarks() const override OSTREL_EXCLUDES(_remarksLock, _problemsLock);

    /// The lease.
    double getSettlingTime() const noexcept override;

private:
    void configure(const Settings& settings) override;
    void start() override;
    void stop() override;

    void run() override;
    void workEnded(const std::string& reason) override { setAllDegraded(reason); }
    /// When to try again, unless it is open now.
    double tryOpen();
    void closeIfStale();
    /// Sends, and reads which peers appeared and disappeared; when to do so again, if nothing happens before.
    std::optional<double> work();
    void setTopicProblems(const DdsTopicProblems& problems) OSTREL_EXCLUDES(_problemsLock);
    void setAllDegraded(const std::string& reason) OSTREL_EXCLUDES(_problemsLock);
    void keepRemarks(std::optional<std::vector<RemarkInfo>> remarks) OSTREL_EXCLUDES(_remarksLock);

    DdsOutCounters _outCounters;
    DdsInCounters _inCounters;
    MemoryShortage _shortage; // of the node's thread

    std::unique_ptr<DdsSession> _session;  // the worker's while the node runs
    std::atomic<bool> _updateNeeded{true}; // peers appeared or disappeared
    double _nextAddressCheck = 0.0;
    double _graceEnd = 0.0; // until then a topic without a publisher is no problem yet

    mutable Ostrel::Mutex _problemsLock{Ostrel::LockRank::Leaf};
    DdsTopicProblems _topicProblems OSTREL_GUARDED_BY(_problemsLock);

    mutable Ostrel::Mutex _remarksLock{Ostrel::LockRank::Leaf};
    std::optional<std::vector<RemarkInfo>> _lastRemarks OSTREL_GUARDED_BY(_remarksLock); // since the node stopped
};

} // namespace Trovio::Nodes
