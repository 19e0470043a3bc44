#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Takes values from the coordinate system of one device to another: units, order and sign of axes.
class Axes final : public FilterNode {
public:
    explicit Axes(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
