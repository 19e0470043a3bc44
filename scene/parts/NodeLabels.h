#pragma once

#include "scene/file/SceneFile.h"

#include <string>
#include <vector>

namespace Scenes {

/// One node of a handler, and the label under which it is to stand.
struct LabelledNode {
    const LocatedPair* _entry;
    std::string _label;
    std::string _settings; // as in the scene file, with `label=` where the framework would choose another one
};

/// The nodes of a handler in their order. Labels follow from the place in the list alone, as if every node could be
/// made: one that is refused keeps its label taken, so that routes to it never lead to a neighbour. A type that nobody
/// knows keeps the label of the known type whose name is nearest.
/// Ownership: refers to the entries of the handler.
std::vector<LabelledNode> labelledNodes(const HandlerEntry& handler);
} // namespace Scenes
