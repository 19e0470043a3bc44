#pragma once

#include "scene/toml/Problems.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Scenes {

constexpr std::size_t maxSceneFile = 16u << 20; // bytes
constexpr std::size_t maxNesting = 128;

/// The text of a scene file. Throws SceneError when it cannot be read, is no regular file or stream, or is larger
/// than maxSceneFile; of a larger one no more than that is read.
std::string readSceneText(const std::string& path);

/// Refuses text whose lists, tables and dotted keys nest deeper than maxNesting, which a recursive parser (and
/// the destructor of what it built) would pay for with its stack. Knows of TOML only strings, comments and brackets.
void checkNesting(std::string_view text, Problems& problems);
} // namespace Scenes
