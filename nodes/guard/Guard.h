#pragma once

#include "nodes/relay/RelayNode.h"
#include "trovio/OutSlot.h"
#include <functional>

namespace Trovio::Nodes {

/// Passes records on, and says when they stop coming: on the out-slot "alive", in its state, and, if asked to, with a
/// value of its own instead of the last one.
/// Time is measured by the steady clock from record to record; neither time stamps nor changes of the date matter.
/// Threads: as for every relay; a loss is declared on the node's thread.
class Guard final : public RelayNode {
public:
    explicit Guard(Clock& clock);
    static const NodeTypeEntry& getEntry();

private:
    enum class Source { Unknown, Alive, Lost };

    std::unique_ptr<Lane> createLane(const Settings& settings) override;
    void start() override;
    std::optional<double> update() override;

    template <class T>
    std::unique_ptr<Lane> createTypedLane(const Settings& settings);
    void recordCame();
    void declareLoss();
    void pushAlive(bool alive);

    Counter& _losses;
    Counter& _substituted;
    OutSlot<bool> _alive{"alive"};

    // Unchanged while the node runs.
    double _after = 0.0;                          // seconds
    std::string _complaint;                       // the reason of the degraded state
    std::function<void(const Time&)> _substitute; // sends the value of a lost source; empty where the last one is held

    // Of the node's thread.
    Source _source = Source::Unknown;
    double _lastCame = 0.0; // when, on the clock; at first the start
};

} // namespace Trovio::Nodes
