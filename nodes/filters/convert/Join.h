#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Puts a value together from parts that come through slots of their own.
class Join final : public FilterNode {
public:
    explicit Join(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
