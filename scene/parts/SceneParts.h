#pragma once

#include "merid/URL.h"
#include "scene/parts/NodeLabels.h"
#include "trovio/Node.h"

#include <functional>
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

/// Chooses what stands for a node of a scene, in its place and under its label: the node itself, which has its settings
/// and has not started, or another one. `path` is where it will stand, from the root down; `type` what the scene calls
/// it; `made` is null where it could not be made, and then so may be what is chosen. What it throws is a fault of the
/// node.
using ChooseNode = std::function<std::unique_ptr<Trovio::Node>(const std::string& path, const std::string& type,
                                                               std::unique_ptr<Trovio::Node> made)>;

/// The node with its settings, not started; null where it has a fault. `baseURL` is what relative file names in its
/// settings are resolved against.
std::unique_ptr<Trovio::Node> makeNode(const LabelledNode& node, const Merid::URL& baseURL,
                                       std::optional<NodeFault>& fault);

/// Makes the node, unless it has been `made` already, and puts it, or what is chosen for it, into the namespace, where
/// it starts if that stands under the root. An empty `choose` takes the node.
std::optional<NodeFault> addNode(Trovio::Namespace& space, const LabelledNode& node, const Merid::URL& baseURL,
                                 const ChooseNode& choose, std::unique_ptr<Trovio::Node> made = nullptr);
} // namespace Scenes
