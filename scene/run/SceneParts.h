#pragma once

#include "merid/URL.h"
#include "scene/run/NodeLabels.h"
#include "trovio/Node.h"

#include <memory>
#include <string>

namespace Scenes {

constexpr std::string_view bridgeKind = "Trovio"; // the kind of handler that has nodes and routes between labels

/// Why no handler of that kind can be made: what is allowed, and the nearest name. Empty if one can.
std::string handlerFault(const std::string& kind);

/// A node with its settings, or what is wrong with it.
struct MadeNode {
    std::unique_ptr<Trovio::Node> _node; // stands nowhere, so it has opened nothing; null if it could not be made
    std::string _fault;                  // why not
    Position _position;                  // of what is wrong
    bool _fromOutside = false;           // the type is known, but cannot be used on this machine
};

/// `baseURL` is what relative file names in the settings are resolved against.
MadeNode madeNode(const LabelledNode& node, const Merid::URL& baseURL);
} // namespace Scenes
