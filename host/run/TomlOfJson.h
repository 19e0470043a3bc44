#pragma once

#include "scene/toml/TomlValue.h"

#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>

namespace Host {

/// A value that JSON says, as a scene file says it; what is null there is a number that is none. Nothing for objects,
/// such as images, which no scene file can hold.
std::optional<std::string> tomlText(const nlohmann::json& value);

/// The same as read from a file.
std::optional<Scenes::TomlValue> tomlValue(const nlohmann::json& from);
} // namespace Host
