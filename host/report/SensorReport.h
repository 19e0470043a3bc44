#pragma once

#include "scene/run/Session.h"

#include <nlohmann/json_fwd.hpp>
#include <set>

namespace Host {

/// Says which sensors of the scene are bound to nothing or have no connection. `apart` are the ends of routes that are
/// not connected.
void reportUnbound(Scenes::LoadedScene& scene, const std::set<std::string>& apart, const Scenes::Say& say);

/// Says for each sensor how many values it had, its last one, and what became of the records in its slots.
/// `now` is in wall-clock seconds.
void reportValues(Scenes::LoadedScene& scene, double now, const Scenes::Say& say);

/// What every sensor of the session came to, a list of {"sensor":…,"label":…,"type":…,"values":…,"rate":…,"age":…}.
nlohmann::ordered_json sensorsJson(const Scenes::Session& session, double now);
} // namespace Host
