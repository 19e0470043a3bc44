#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Trovio {

/// One name=value pair as it was written, quotes and escapes resolved.
using SettingText = std::pair<std::string, std::string>;

/// Splits blank-separated name=value pairs. Throws InvalidFieldException, with the place, where the text is none.
std::vector<SettingText> parseSettings(std::string_view text);

} // namespace Trovio
