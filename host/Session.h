#pragma once

#include "host/LoadedScene.h"

#include <memory>
#include <vector>

namespace Host {

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
    void build(std::vector<SceneFile> files, const Say& say);

    /// Services every sensor of every scene; `now` in wall-clock seconds.
    void frame(double now);

    const std::vector<std::unique_ptr<LoadedScene>>& scenes() const { return _scenes; }
    /// The watches of all scenes.
    std::vector<SensorWatch*> watches() const;

private:
    void tearDown();

    std::vector<std::unique_ptr<LoadedScene>> _scenes;
};
} // namespace Host
