#pragma once

#include "host/SceneGraph.h"
#include "merid/URL.h"

#include <cstdio>

namespace Host {

/// Says on standard error what a run of a scene would warn of and go on; so none of it is an error.
/// Ownership: refers to the scene, which must live as long.
class SceneNotes {
public:
    explicit SceneNotes(const SceneFile& scene) : _scene(scene) {}

    /// Of handlers, nodes and sensors.
    void checkParts();

    /// Of routes whose two ends are there, but stay apart. `root` is the tree of the graph that the scene stands in.
    void checkRoutes(const SceneGraph& graph, const Trovio::NamespaceInfo& root);

    /// The line that ends a check: how much there is, and how many notes there were.
    void printSum(std::FILE* out) const;

private:
    void checkHandler(const HandlerEntry& handler);
    void checkNode(const LocatedPair& node, const Merid::URL& baseURL);
    void checkRoute(const LocatedPair& route, const Trovio::NamespaceInfo& info);
    void note(Position position, const std::string& text);

    const SceneFile& _scene;
    std::size_t _trovioHandlers = 0;
    std::size_t _notes = 0;
};
} // namespace Host
