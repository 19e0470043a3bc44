#pragma once

#include "merid/URL.h"

#include <string>

namespace Scenes {

/// The URL that a scene file means by `text`: a relative file URL such as "file:." starts at the folder of the scene
/// file, so that a scene works from wherever it is run. Throws std::invalid_argument for a bad URL.
Merid::URL sceneURL(const std::string& text, const std::string& scenePath);
} // namespace Scenes
