#include "scene/change/MergedSettings.h"

#include "scene/file/SettingsText.h"

#include <algorithm>

namespace Scenes {
namespace {

// A bar would end the filter that such settings may belong to.
std::string written(const Trovio::SettingText& setting)
{
    const auto& [name, value] = setting;
    const bool needsQuotes = value.empty() || value.find_first_of(" \t\r\n'\"\\|") != std::string::npos;
    return needsQuotes ? settingText(name, value) : name + "=" + value;
}
} // namespace

std::string mergedSettings(std::string_view settings, std::span<const Trovio::SettingText> changed)
{
    std::vector<Trovio::SettingText> merged = Trovio::parseSettings(settings);
    for (const Trovio::SettingText& one : changed) {
        const auto known = std::ranges::find(merged, one.first, &Trovio::SettingText::first);
        known == merged.end() ? merged.push_back(one) : void(known->second = one.second);
    }
    std::string text;
    for (const Trovio::SettingText& one : merged)
        text.append(text.empty() ? "" : " ").append(written(one));
    return text;
}
} // namespace Scenes
