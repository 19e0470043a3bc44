#pragma once

#include "nodes/osc/OscInput.h"
#include "nodes/osc/OscOutput.h"
#include "nodes/shared/SlotListNode.h"

namespace Trovio::Nodes {

/// Receives and sends Open Sound Control messages over UDP: each address it knows is a slot.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   one thread receives and pushes, one sends; a half without settings has none.
class OscNode final : public SlotListNode {
public:
    explicit OscNode(Clock& clock, std::unique_ptr<NameLookup> lookup = NameLookup::system());
    ~OscNode() override;

    static const NodeTypeEntry& getEntry();

    /// Where it listens, while it does.
    std::vector<SocketAddress> getListenAddresses() const;

    /// Each half may fail alone.
    NodeState getStateOf(const Slot& slot) const override OSTREL_EXCLUDES(_problemLock);

    /// For each out-slot that nothing reached, or not all: what came instead.
    std::vector<RemarkInfo> getRemarks() const override;

private:
    /// The problem of each half; empty if there is none.
    struct Problems {
        std::string _input, _output;
        bool operator==(const Problems&) const = default;
    };

    void configure(const Settings& settings) override;
    void start() override;
    void stop() override;

    void setProblem(std::string Problems::*half, const std::string& problem) OSTREL_EXCLUDES(_problemLock);
    void showState(const Problems& problems) OSTREL_EXCLUDES(_problemLock);

    Clock& _clock;
    const std::shared_ptr<NameLookup> _lookup; // of one output after another
    OscInCounters _inCounters;
    OscOutCounters _outCounters;

    mutable Ostrel::Mutex _problemLock{Ostrel::LockRank::NodeQueue};
    Problems _problems OSTREL_GUARDED_BY(_problemLock);

    // Unchanged while the node runs.
    std::unique_ptr<OscInput> _input;
    std::unique_ptr<OscOutput> _output;
};

} // namespace Trovio::Nodes
