#pragma once

#include <string>
#include <string_view>

namespace Scenes {

/// "name='value'", with what quotes need, as the settings of a node are written.
inline std::string settingText(std::string_view name, std::string_view value)
{
    std::string text = std::string(name) + "='";
    for (const char byte : value)
        text.append(byte == '\'' || byte == '\\' ? "\\" : "").append(1, byte);
    return text + "'";
}
} // namespace Scenes
