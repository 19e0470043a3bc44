#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Silences each component near its centre, and keeps it steady at the zone's edge.
class DeadZone final : public FilterNode {
public:
    explicit DeadZone(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
