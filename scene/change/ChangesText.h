#pragma once

#include "scene/file/SceneFile.h"

#include <map>
#include <string>

namespace Scenes {

/// In which nodes, routes and initial values `now` differs from `loaded`, of which it is an edited copy: lines of TOML,
/// each behind a comment that says where to paste it; what is to go stands in comments. `values` are those that sensors
/// were given, as TOML, by their names. Empty where nothing differs.
std::string changesText(const SceneFile& loaded, const SceneFile& now,
                        const std::map<std::string, std::string>& values);
} // namespace Scenes
