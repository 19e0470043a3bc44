#pragma once

#include "scene/file/Problems.h"

#include <string_view>

namespace Scenes {

/// The root table of TOML text that checkNesting has passed. A syntax error becomes a problem and an empty table.
TomlValue parseToml(std::string_view text, Problems& problems);
} // namespace Scenes
