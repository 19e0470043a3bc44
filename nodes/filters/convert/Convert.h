#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Makes values of one type into values of another: numbers, truth from a threshold, rotations from angles.
class Convert final : public FilterNode {
public:
    explicit Convert(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
