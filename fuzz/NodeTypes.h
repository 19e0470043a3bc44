#pragma once

#include "trovio/NodeModule.h"
#include <vector>

namespace Fuzz {

/// The node types of this build, linked in rather than loaded.
const std::vector<const Trovio::NodeTypeEntry*>& nodeTypes();

} // namespace Fuzz
