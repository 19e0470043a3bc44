#pragma once

#include "monitor/SceneChanges.h"
#include "scene/change/SceneChanger.h"

namespace Host {

/// What a server may have changed in a run, by the changer, which must live as long.
Monitor::SceneChanges changesOf(Scenes::SceneChanger& changer);
} // namespace Host
