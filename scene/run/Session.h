#pragma once

#include "scene/run/LoadedScene.h"
#include "trovio/Namespace.h"

#include <memory>
#include <vector>

namespace Scenes {

/// Everything that runs: the framework's root and one context per scene file.
/// Ownership: owns the scenes and what they made. The destructor takes everything down, whatever stands by then.
/// Threads:   the scene thread only. One object per process at a time.
class Session {
public:
    Session();
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Builds the scenes. First all sensors and handlers, last the nodes, so that nothing that a device sends is lost.
    /// Ends early, and returns false, where `stopped` says so: it is asked before each step that can take long.
    /// `choose` may put something else in the place of nodes.
    bool build(
        std::vector<SceneFile> files, const Say& say, const Stopped& stopped = [] { return false; },
        const ChooseNode& choose = {});

    /// Services every sensor of every scene; `now` in wall-clock seconds.
    void frame(double now);

    /// Stops every node for good, and returns the tree as it stood, with counts that change no more and fit together:
    /// what an out-slot has written, its in-slots have stored. Sensors keep their slots, but nothing is connected any
    /// more. After the last frame, and once.
    Trovio::NamespaceInfo stopNodes();

    const std::vector<std::unique_ptr<LoadedScene>>& scenes() const { return _scenes; }
    /// The watches of all scenes.
    std::vector<SensorWatch*> watches() const;

private:
    void tearDown();

    std::vector<std::unique_ptr<LoadedScene>> _scenes;
    std::vector<std::unique_ptr<Trovio::Namespace>> _stopped; // of the handlers, out of the root
};
} // namespace Scenes
