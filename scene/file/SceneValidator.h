#pragma once

#include "scene/file/SceneFile.h"
#include "scene/toml/Problems.h"

namespace Scenes {

/// What spans several keys or needs the runtime's knowledge: names and labels used twice, field types, initial
/// values, URLs, patterns of routes, ends of links. Takes n log n time or less.
void validateScene(const SceneFile& scene, Problems& problems);
} // namespace Scenes
