#pragma once

#include "scene/SceneCheck.h"
#include "scene/check/SceneGraph.h"

#include <functional>

namespace Scenes {

/// Finds what is wrong with a scene that could be read, and what is odd.
/// Ownership: refers to the scene, which must live as long.
/// Threads:   one.
class SceneWarnings {
public:
    /// Hears of each finding at once.
    using Tell = std::function<void(const SceneFinding& finding)>;

    SceneWarnings(const SceneFile& scene, Tell tell) : _scene(scene), _tell(std::move(tell)) {}

    /// Checks handlers, nodes and sensors, routes that can carry nothing as they stand, and sensors that none reaches.
    /// `root` is the tree of the graph that the scene stands in. Leaves off where `stopped` says so.
    void check(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped);

private:
    void checkParts(const SceneGraph& graph);
    void checkRoutes(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped);
    void checkSensors(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped);
    void checkRivals(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Trovio::NamespaceInfo& space);
    void note(Position position, const std::string& text) { tell(position, false, text); }
    void tell(Position position, bool isError, const std::string& text);

    const SceneFile& _scene;
    const Tell _tell;
};
} // namespace Scenes
