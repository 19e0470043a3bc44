#pragma once

#include "scene/toml/TomlValue.h"

namespace Ostrel {
class Field;
}

namespace Scenes {

/// Writes a scene's value into the field, as ValueForm says, and announces nothing. Returns what does not fit, which
/// is `value` or a part of it, and then leaves the field half-written; null when all fitted.
const TomlValue* setInitialValue(Ostrel::Field& field, const TomlValue& value);
} // namespace Scenes
