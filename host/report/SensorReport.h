#pragma once

#include "scene/run/LoadedScene.h"

#include <set>

namespace Host {

/// Says which sensors of the scene are bound to nothing or have no connection. `apart` are the ends of routes that are
/// not connected.
void reportUnbound(LoadedScene& scene, const std::set<std::string>& apart, const Say& say);

/// Says for each sensor how many values it had, its last one, and what became of the records in its slots.
/// `now` is in wall-clock seconds.
void reportValues(LoadedScene& scene, double now, const Say& say);
} // namespace Host
