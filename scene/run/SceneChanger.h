#pragma once

#include "base/Mutex.h"
#include "scene/change/Edits.h"
#include "scene/change/FrameJobs.h"
#include "scene/run/Session.h"

namespace Scenes {

/// Changes what runs, for threads other than the scene's: reads, compares and makes what is new on the thread that
/// calls, and has the scene thread do the rest between two frames. One change at a time; who comes meanwhile waits.
/// Ownership: refers to the session and the jobs, which must live as long.
/// Threads:   any but the scene thread, which must go on with FrameJobs::work() or have called FrameJobs::end().
/// Errors:    SceneError where the change is no good, JobRefused where the run has ended: nothing has changed then.
class SceneChanger {
public:
    /// `say` gets the plan, line by line, before it is done, and what could not be started; it must not block.
    SceneChanger(Session& session, FrameJobs& jobs, Say say);

    using Lines = std::vector<std::string>;

    /// Reads the files anew and does what differs from what runs, which takes changes by hand back. Returns what that
    /// was; empty where nothing differs.
    Lines reload();

    /// Called after each reload, on its thread, with what was done. To be set before the first.
    using Heard = std::function<void(const std::vector<SceneDifference>& done)>;
    void whenRead(Heard heard) { _heard = std::move(heard); }

    /// Gets the files as they run, and returns others, by the functions of Edits.h.
    using Edit = std::function<SceneFiles(const SceneFiles& running)>;
    /// Does what differs between what runs and what `edit` makes of it. Returns what that was. What `edit` throws comes
    /// out here.
    Lines change(const Edit& edit);

    /// What was changed by hand since the files were read last: from how they were read to how they run.
    std::vector<SceneDifference> changesByHand() const;

private:
    Lines apply(SceneFiles after, Session::Origin origin) OSTREL_REQUIRES(_lock);

    Session& _session;
    FrameJobs& _jobs;
    const Say _say;
    Heard _heard;
    Ostrel::Mutex _lock; // for one change; held while its threads wait for the scene's
};
} // namespace Scenes
