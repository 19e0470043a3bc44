#pragma once

#include "scene/run/Session.h"
#include "trovio/Inspection.h"

#include <nlohmann/json_fwd.hpp>

namespace Host {

/// Says which sensors of the scene are bound to nothing or have no connection in the tree.
void reportUnbound(Scenes::LoadedScene& scene, const Trovio::NamespaceInfo& root, const Scenes::Say& say);

/// Says for each sensor how many values it had, its last one, and what became of the records in its slots.
/// `now` is in wall-clock seconds.
void reportValues(Scenes::LoadedScene& scene, double now, const Scenes::Say& say);

/// What every sensor of the session came to, a list of {"sensor":…,"label":…,"type":…,"values":…,"rate":…,"age":…}.
nlohmann::ordered_json sensorsJson(const Scenes::Session& session, double now);
} // namespace Host
