#pragma once

#include "host/LoadedScene.h"

namespace Host {

/// Says which sensors of the scene are bound to nothing or have no connection.
void reportUnbound(LoadedScene& scene, const Say& say);

/// Says for each sensor how many values it had, its last one, and what became of the records in its slots.
void reportValues(LoadedScene& scene, const Say& say);
} // namespace Host
