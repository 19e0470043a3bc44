#pragma once

#include "nodes/filters/FilterNode.h"

namespace Trovio::Nodes {

/// Takes the jitter out of slow signals and the lag out of fast ones: a low-pass filter whose cut-off frequency rises
/// with the speed of the signal. Rotations are filtered along arcs of the sphere.
class OneEuro final : public FilterNode {
public:
    explicit OneEuro(Clock& clock);
    static const NodeTypeEntry& getEntry();
};

} // namespace Trovio::Nodes
