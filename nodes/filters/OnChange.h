#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

class ChangeLane;

/// Passes on what differs from what it passed on last; the newest of what it kept back after a longest silence.
/// Threads: as for every relay; what was kept back goes out on the node's thread.
class OnChange final : public FilterNode {
public:
    explicit OnChange(Clock& clock);
    static const NodeTypeEntry& getEntry();

private:
    std::optional<double> update() override;

    Counter& _afterSilence;

    // Unchanged while the node runs.
    ChangeLane* _changes = nullptr; // the node's lane
    double _silence = 0.0;          // seconds; 0: however long
};

} // namespace Trovio::Nodes
