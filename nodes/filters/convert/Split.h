#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Sends each part of a value through an out-slot of its own.
class Split final : public FilterNode {
public:
    explicit Split(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
