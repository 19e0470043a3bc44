#pragma once

#include "scene/file/SceneFile.h"

#include <string>
#include <string_view>

namespace Scenes {

/// Reads and checks the scene file at `path`. Throws SceneError with every problem found in it.
SceneFile readScene(const std::string& path);

/// The same for text that is already here; `path` only names it in messages.
SceneFile parseScene(std::string_view text, const std::string& path);
} // namespace Scenes
