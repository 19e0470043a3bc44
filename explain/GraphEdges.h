#pragma once

#include "trovio/Inspection.h"

#include <string>
#include <vector>

namespace Explain {

/// A pair of slots that a route leads between, or should.
struct GraphEdge {
    struct End {
        std::string _path;  // to where the slot stands; of one that is missing, to where the route looks for it
        std::string _label; // as the route calls it
        bool _isThere = false;
    };
    End _from, _to;
    std::string _reason; // why they are not connected; empty when they are
};

/// All of a tree, in its order. Any thread.
std::vector<GraphEdge> graphEdges(const Trovio::NamespaceInfo& root);

/// What graphDot() calls that end, without quotes: in a picture that graphviz draws of it, the arrow between two ends
/// has the title "name->name". Any thread.
std::string dotName(const GraphEdge::End& end);
} // namespace Explain
