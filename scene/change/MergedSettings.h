#pragma once

#include "trovio/settings/SettingsParser.h"

#include <span>
#include <string>
#include <string_view>

namespace Scenes {

/// The settings of a node with some of them changed: those that the text has keep their place, others follow. Values
/// stand in quotes only where they need them. Throws Trovio::InvalidFieldException for a text that is no settings.
std::string mergedSettings(std::string_view settings, std::span<const Trovio::SettingText> changed);
} // namespace Scenes
