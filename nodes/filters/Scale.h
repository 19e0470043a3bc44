#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// gain * x + offset, for each component on its own.
class Scale final : public FilterNode {
public:
    explicit Scale(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
