#pragma once

#include "scene/change/Edits.h"

#include <optional>
#include <string>
#include <vector>

namespace Scenes {

/// A node of scenes that run, by the numbers of scene, handler and node.
struct NamedNode {
    std::string _label; // in the root
    std::size_t _scene, _handler, _node;
};

/// The node that is meant by its label in the root, or the end of it behind a slash. Throws NoSuchPart where there is
/// none, with the nearest, and SceneError where there are several.
NamedNode findNode(const SceneFiles& files, const std::string& label);

/// A route as it was written, its ends as the root calls them.
struct NamedRoute {
    std::string _from, _to;
    std::size_t _scene;
    std::optional<std::size_t> _handler; // none for a route of the root
    std::size_t _route;                  // its number there
};

std::vector<NamedRoute> namedRoutes(const SceneFiles& files);

/// The route that is meant by both ends or the ends of these behind a slash; one of several that are the same. Throws
/// NoSuchPart where there is none, with the nearest, and SceneError where there are different ones.
NamedRoute findRoute(const SceneFiles& files, const std::string& from, const std::string& to);

/// A handler by its numbers, and where it stands in the root.
struct HandlerPlace {
    std::size_t _scene, _handler;
    std::string _path;
};

/// The handler in whose namespace both labels of the root stand.
std::optional<HandlerPlace> commonHandler(const SceneFiles& files, const std::string& a, const std::string& b);
} // namespace Scenes
