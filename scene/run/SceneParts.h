#pragma once

#include "merid/URL.h"
#include "scene/run/NodeLabels.h"
#include "trovio/Namespace.h"

#include <optional>
#include <string>

namespace Scenes {

/// Whether there is such a kind of handler; also where none of it can be made.
bool isKnownKind(const std::string& kind);

/// Why no handler of that kind can be made: what is allowed, and the nearest name. Empty if one can.
std::string handlerFault(const std::string& kind);

/// Whether a handler of that kind stands in the root under a label, or would if it could be made: one of an unknown
/// kind keeps its label taken, so that those after it have the labels that they have once its kind is spelt right.
bool takesLabel(const std::string& kind);

/// Why a node could not be made.
struct NodeFault {
    Position _position; // of what is wrong
    std::string _text;
    bool _fromOutside = false; // the type is known, but cannot be used on this machine
};

/// Makes the node and puts it into the namespace, where it starts if that stands under the root. `baseURL` is what
/// relative file names in its settings are resolved against.
std::optional<NodeFault> addNode(Trovio::Namespace& space, const LabelledNode& node, const Merid::URL& baseURL);
} // namespace Scenes
