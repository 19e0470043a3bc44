#pragma once

#include "scene/file/SceneFile.h"
#include "scene/toml/Problems.h"

#include <string_view>

namespace Scenes {

/// Makes the conversions that stand on routes into nodes and routes of their handlers, as if they had been written out:
/// of ["A", "Wand", "Axes unit=cm | OneEuro"] the nodes Wand~1 and Wand~2, each with the type that the sensor at the
/// route's end asks for, and the routes from A through both to Wand. `source` is the text of the file, for the places
/// of what stands inside a text.
void makeConversions(SceneFile& scene, std::string_view source, Problems& problems);
} // namespace Scenes
