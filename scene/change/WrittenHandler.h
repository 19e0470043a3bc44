#pragma once

#include "scene/file/SceneFile.h"

#include <vector>

namespace Scenes {

/// A route of a handler with the conversion on it, which is empty where there is none.
struct WrittenRoute {
    LocatedText _from, _to, _conversion;
};

/// Nodes and routes of a handler as its scene has them, before conversions became nodes and routes.
struct WrittenHandler {
    std::vector<LocatedPair> _nodes;
    std::vector<WrittenRoute> _routes;

    /// A filter on a route: the number of the route, and that of the filter in its conversion.
    struct Filter {
        std::size_t _route, _number;
    };
    /// What the node with that number in the handler was made of, where it stands behind the written ones.
    Filter filterOf(std::size_t node) const;
};

WrittenHandler writtenHandler(const HandlerEntry& handler);

/// The other way round; conversions stay texts until makeConversions().
void setWritten(HandlerEntry& handler, WrittenHandler written);
} // namespace Scenes
