#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Holds each component between two bounds.
class Clamp final : public FilterNode {
public:
    explicit Clamp(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
