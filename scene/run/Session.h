#pragma once

#include "base/Mutex.h"
#include "scene/run/LoadedScene.h"
#include "trovio/Namespace.h"

#include <memory>
#include <vector>

namespace Scenes {

/// Everything that runs: the framework's root and one context per scene file.
/// Ownership: owns the scenes and what they made. The destructor takes everything down, whatever stands by then.
/// Threads:   the scene thread only, but for files(). One object per process at a time.
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

    /// What runs, and as which files it was read last: the same, but for what was changed by hand since.
    struct Files {
        SceneFiles _running, _loaded;
    };
    /// Any thread.
    Files files() const OSTREL_EXCLUDES(_filesLock);

    /// What the files are that the plan leads to.
    enum class Origin { Read, ChangedByHand };
    /// Does what the plan says, between two frames; blocks while nodes stop and start. What the plan does not name goes
    /// on as if nothing were: sensors keep their values, slots and counts, nodes run, records flow. `say` gets a line
    /// about each handler and node that could not be made, and where a new route closes a loop of nodes, so that all
    /// handlers had to be made anew.
    /// Throws SceneError, and has done nothing, where the plan begins with other files than those that run, or a
    /// handler that is new or has changed cannot be made.
    void apply(Plan& plan, Origin origin, const Say& say) OSTREL_EXCLUDES(_filesLock);

    /// How often sensors have come, gone or changed places: who keeps watches looks again where this has grown.
    std::uint64_t sensorChanges() const { return _sensorChanges; }

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
    void connect(const Say& say, const Stopped& stopped);
    void setFiles(SceneFiles running, Origin origin) OSTREL_EXCLUDES(_filesLock);
    void makeHandlersAnew(const std::vector<const LocatedPair*>& leftOut, const Say& say);
    void tearDown();

    std::vector<std::unique_ptr<LoadedScene>> _scenes;
    std::uint64_t _sensorChanges = 0;
    mutable Ostrel::Mutex _filesLock{Ostrel::LockRank::Leaf};
    Files _files OSTREL_GUARDED_BY(_filesLock);
    std::vector<std::unique_ptr<Trovio::Namespace>> _stopped; // of the handlers, out of the root
};
} // namespace Scenes
