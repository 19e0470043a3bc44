#include "scene/parts/NodeLabels.h"

#include "explain/text/NameHint.h"
#include "scene/file/SettingsText.h"
#include "trovio/Exception.h"
#include "trovio/NodeType.h"
#include "trovio/settings/SettingsParser.h"

#include <algorithm>
#include <set>

namespace Scenes {

using namespace Explain;

namespace {

using Trovio::SettingText;

constexpr std::string_view labelName = "label";

// Of settings that cannot be read, so that their node is refused: what most likely was to be its label.
std::string roughLabel(std::string_view text)
{
    constexpr std::string_view blanks = " \t\r\n", ends = " \t\r\n'\"";
    const std::string key = std::string(labelName) + "=";
    std::size_t at = text.find(key);
    while (at != std::string_view::npos && at > 0 && blanks.find(text[at - 1]) == std::string_view::npos)
        at = text.find(key, at + 1);
    if (at == std::string_view::npos)
        return {};
    text.remove_prefix(at + key.size());
    if (text.starts_with('\'') || text.starts_with('"'))
        text.remove_prefix(1);
    return std::string(text.substr(0, text.find_first_of(ends)));
}

std::string givenLabel(const std::string& settings)
{
    try {
        const std::vector<SettingText> pairs = Trovio::parseSettings(settings);
        const auto label = std::ranges::find(pairs, labelName, &SettingText::first);
        return label == pairs.end() ? std::string() : label->second;
    } catch (const Trovio::InvalidFieldException&) {
        return roughLabel(settings);
    }
}

std::string knownType(const std::string& type)
{
    const std::vector<std::string> known = Trovio::NodeType::names();
    if (std::ranges::find(known, type) != known.end())
        return type;
    const std::string_view nearest = nearestName(type, std::vector<std::string_view>(known.begin(), known.end()));
    return nearest.empty() ? type : std::string(nearest);
}

// As the framework does it: the lowest free number from 2.
std::string freeLabel(const std::string& wanted, const std::set<std::string>& taken)
{
    std::string label = wanted;
    for (std::size_t number = 2; taken.contains(label); ++number)
        label = wanted + std::to_string(number);
    return label;
}

// Settings that cannot be read stay as they are: whoever takes them says what is wrong.
std::string withLabel(const std::string& settings, const std::string& label)
{
    try {
        std::string text;
        for (const auto& [name, value] : Trovio::parseSettings(settings))
            if (name != labelName)
                text.append(settingText(name, value)).append(" ");
        return text.append(settingText(labelName, label));
    } catch (const Trovio::InvalidFieldException&) {
        return settings;
    }
}
} // namespace

std::vector<LabelledNode> labelledNodes(const HandlerEntry& handler)
{
    std::vector<LabelledNode> nodes;
    std::set<std::string> taken;
    for (const LocatedPair& entry : handler._nodes) {
        const std::string& settings = entry._second._value;
        const std::string given = givenLabel(settings);
        const std::string wanted = given.empty() ? knownType(entry._first._value) : given;
        const std::string label = freeLabel(wanted, taken);
        taken.insert(label);
        nodes.push_back({&entry, label, label == wanted ? settings : withLabel(settings, label)});
    }
    return nodes;
}
} // namespace Scenes
