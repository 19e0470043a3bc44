#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Turns, moves and scales what one room's coordinates say into another room's.
class Align final : public FilterNode {
public:
    explicit Align(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
