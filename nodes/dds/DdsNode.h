#pragma once

#include "nodes/dds/DdsSession.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/WorkerNode.h"
#include "trovio/Settling.h"

namespace Trovio::Nodes {

/// Slots that meet across programs and machines: an in-slot for each topic that is published, an out-slot for each that
/// is subscribed to, by the same label everywhere.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   one thread sends and looks after peers; what comes in is pushed on threads of the DDS library.
class DdsNode final : public WorkerNode, public Settling {
public:
    explicit DdsNode(Clock& clock);
    ~DdsNode() override;

    static const NodeTypeEntry& getEntry();

    /// Each topic may be in trouble alone.
    NodeState getStateOf(const Slot& slot) const override OSTREL_EXCLUDES(_troublesLock);

    /// How old the newest values are, by their source's clock, or why there are none.
    std::vector<RemarkInfo> getRemarks() const override OSTREL_EXCLUDES(_remarksLock, _troublesLock);

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
    /// Sends and looks around; when to do so again, if nothing happens before.
    std::optional<double> work();
    void setTroubles(const DdsTroubles& troubles) OSTREL_EXCLUDES(_troublesLock);
    void setAllDegraded(const std::string& reason) OSTREL_EXCLUDES(_troublesLock);
    void keepRemarks(std::optional<std::vector<RemarkInfo>> remarks) OSTREL_EXCLUDES(_remarksLock);

    DdsOutCounters _outCounters;
    DdsInCounters _inCounters;
    MemoryShortage _shortage; // of the node's thread

    std::unique_ptr<DdsSession> _session; // the worker's while the node runs
    std::atomic<bool> _lookNeeded{true};  // peers came or went
    double _nextAddressLook = 0.0;
    double _graceEnd = 0.0; // until then a topic without a publisher is no trouble yet

    mutable Ostrel::Mutex _troublesLock; // leaf
    DdsTroubles _troubles OSTREL_GUARDED_BY(_troublesLock);

    mutable Ostrel::Mutex _remarksLock;                                                  // leaf
    std::optional<std::vector<RemarkInfo>> _lastRemarks OSTREL_GUARDED_BY(_remarksLock); // since the node stopped
};

} // namespace Trovio::Nodes
