#pragma once

#include "nodes/relay/Lane.h"
#include "nodes/shared/MemoryShortage.h"
#include "nodes/shared/WorkerNode.h"
#include <memory>

namespace Trovio::Nodes {

/// The settings of a relay: its type, how many records may wait, and rows of its own.
/// Lives as long as the node type, which refers to it.
class RelayTable {
public:
    /// types: the names of the types that the relay is made for, as choices: "Float|Vec3f"; meaning: of which slots.
    RelayTable(std::string types, const char* initialType, std::initializer_list<Setting> rows,
               const char* meaning = "slot type of both ends");
    RelayTable(const RelayTable&) = delete;
    RelayTable& operator=(const RelayTable&) = delete;

    std::span<const Setting> rows() const { return _rows; }

private:
    const std::string _types;
    std::vector<Setting> _rows;
};

/// Takes records from its in-slots, those of each in order, and sends what becomes of them through its out-slots.
/// Invariant: received = sent + rejected + kept whenever nothing waits; a record that there was no memory for may be
///            none.
/// Ownership: owns its slots; routes refer to them only while the node stands in a namespace.
/// Threads:   a record that arrives is queued and wakes the node's own thread, which does all the rest.
class RelayNode : public WorkerNode, private SlotListener {
public:
    ~RelayNode() override;

protected:
    explicit RelayNode(Clock& clock);

    /// The lane that the settings ask for. Throws InvalidFieldException, before anything has changed.
    virtual std::unique_ptr<Lane> createLane(const Settings& settings) = 0;

    /// Runs on the node's thread whenever no record waits. When it wants to run again, if nothing comes before that.
    virtual std::optional<double> update() { return std::nullopt; }

    /// Runs on the node's thread for each record that was received but not sent.
    virtual void countUnsent(Outcome) {}

    void configure(const Settings& settings) override;

    /// A record that went out of update(). On the node's thread.
    void addSent() { _sent.add(); }

    /// Records sent so far. Any thread.
    std::uint64_t countSent() const { return _sent.get(); }

    /// The labels of what goes out. Any thread, once the node is configured.
    std::vector<std::string> outLabels() const;

    static unsigned readQueue(const Settings& settings);

private:
    void dataArrived(Slot&) override { _worker.wake(); }
    void run() override;
    void relayWaiting();

    Counter& _received;
    Counter& _sent;
    MemoryShortage _shortage;
    std::unique_ptr<Lane> _lane; // unchanged while the node runs
};

/// The factory of a node type that needs nothing but the system's clock.
template <class NodeT>
std::unique_ptr<Node> createOnSystemClock()
{
    return std::make_unique<NodeT>(Clock::system());
}

} // namespace Trovio::Nodes
