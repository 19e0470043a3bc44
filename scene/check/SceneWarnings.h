#pragma once

#include "scene/check/SceneGraph.h"
#include "scene/file/Problems.h"

#include <cstdio>

namespace Scenes {

/// Tells the person at the terminal what is wrong with a scene that could be read, and what is odd. A note is printed
/// on standard error at once; what is wrong is kept for the end.
/// Ownership: refers to the scene, which must live as long.
class SceneWarnings {
public:
    explicit SceneWarnings(const SceneFile& scene) : _scene(scene), _problems(scene._path) {}

    /// Of handlers, nodes and sensors.
    void checkParts(const SceneGraph& graph);

    /// Of routes that can carry nothing as they stand, and of sensors that none reaches. `root` is the tree of the
    /// graph that the scene stands in. Leaves off where `stopped` says so.
    void checkRoutes(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped);

    /// Ends a check: says what is wrong, or else on `out` that the scene is good, how much there is in it, and how many
    /// notes there were. Whether it is good; where `strict`, notes are wrong, too.
    bool finish(std::FILE* out, bool strict) const;

private:
    void checkSensors(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped);
    void checkRivals(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Trovio::NamespaceInfo& space);
    void note(Position position, const std::string& text);
    void printSum(std::FILE* out) const;

    const SceneFile& _scene;
    Problems _problems;
    std::size_t _notes = 0;
};
} // namespace Scenes
