#pragma once

#include "scene/file/SceneFile.h"

#include <string>
#include <string_view>
#include <vector>

namespace Scenes {

/// Reads and checks the scene file at `path`. Throws SceneError with every problem found in it.
SceneFile readScene(const std::string& path);

/// Reads several, one after the other. Throws SceneError with the problems of all of them, a line each, and
/// OutOfMemory.
std::vector<SceneFile> readScenes(const std::vector<std::string>& paths);

/// The same as readScene() for text that is already here; `path` only names it in messages.
SceneFile parseScene(std::string_view text, const std::string& path);
} // namespace Scenes
