#pragma once

#include "scene/toml/TomlValue.h"

namespace Scenes {

/// Whether both say the same, wherever they stand. NaN is the same as NaN.
bool isSameValue(const TomlValue& one, const TomlValue& other);
} // namespace Scenes
