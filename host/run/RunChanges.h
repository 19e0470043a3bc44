#pragma once

#include "monitor/SceneChanges.h"
#include "scene/run/SceneChanger.h"

namespace Host {

/// What a server may have changed in a run, by the changer and the jobs of its frames. All three must live as long.
Monitor::SceneChanges changesOf(Scenes::Session& session, Scenes::FrameJobs& jobs, Scenes::SceneChanger& changer);
} // namespace Host
