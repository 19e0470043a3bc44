// First line: a node type, or "Kinds". Below: the text of its settings. The text goes through the parser and into a
// node of that type, which does not start, or into a table with each kind of setting.
#include "fuzz/Fuzz.h"
#include "fuzz/NodeTypes.h"
#include "trovio/Node.h"
#include "trovio/Time.h"
#include "trovio/settings/SettingsParser.h"

namespace Fuzz {

namespace {

using namespace Trovio;

/// The pairs as somebody would write them who quotes everything.
std::string written(const std::vector<SettingText>& pairs)
{
    std::string text;
    for (const auto& [name, value] : pairs) {
        text += name + "=\"";
        for (const char character : value)
            text += character == '"' || character == '\\' ? std::string{'\\', character} : std::string{character};
        text += "\" ";
    }
    return text;
}

void checkParser(const std::string& text)
{
    try {
        const auto pairs = parseSettings(text);
        require(parseSettings(written(pairs)) == pairs, "pairs that are written and parsed again stay as they are");
    } catch (const InvalidFieldException& refusal) {
        require(!refusal.getMessage().empty(), "a refusal says why");
    }
}

void checkKinds(const std::string& text)
{
    static const Merid::URL base("file:below/here");
    static const std::vector<Setting> table{
        Setting::boolean("flag", "false", "a flag"),      Setting::integer("whole", "1", -5, 10, "an integer"),
        Setting::number("real", "0.5", 0, 1, "a number"), Setting::choice("one", "a", "a|b|c", "a choice"),
        Setting::endpoint("end", "", "a place"),          Setting::file("file", "", "a file"),
        Setting::text("text", nullptr, "any text"),
    };
    try {
        const Settings settings(table, text, base);
        require(settings.isGiven("text"), "what must be given was given");
        require(settings.flag("flag") == (settings.text("flag") == "true"), "a flag is what was written");
        require(settings.integer("whole") >= -5 && settings.integer("whole") <= 10, "integers are in their range");
        require(settings.number("real") >= 0 && settings.number("real") <= 1, "numbers are in their range");
        require(settings.choice("one") < 3, "a choice is one of the row's");
        require(settings.endpoint("end").has_value() != settings.text("end").empty(), "an endpoint is read or refused");
        const std::string& path = settings.file("file");
        require(path.empty() || path.front() == '/' || path.starts_with("below/here/"), "a file is below the base");
        require(("/" + path + "/").find("/../") == std::string::npos || path.front() == '/', "and no .. leads out");
    } catch (const InvalidFieldException& refusal) {
        require(!refusal.getMessage().empty(), "a refusal says why");
    }
}

/// Labels and types of a node's slots, which are what settings change.
std::string slotsOf(const Node& node)
{
    std::string slots;
    for (const SlotInfo& slot : node.inspect()._slots)
        slots += slot._label + " " + slot._typeName + (slot._out ? " out\n" : " in\n");
    return slots;
}

bool isTaken(Node& node, const std::string& text)
{
    try {
        node.setFieldValues(text);
        return true;
    } catch (const InvalidFieldException& refusal) {
        require(!refusal.getMessage().empty(), "a refusal says why");
        return false;
    }
}

void checkNode(const NodeTypeEntry& type, const std::string& text)
{
    const auto node = type._create();
    node->setType(type);
    const std::string before = slotsOf(*node);
    const bool taken = isTaken(*node, text);
    const std::string after = slotsOf(*node);
    require(taken || after == before, "refused settings change nothing");
    require(isTaken(*node, text) == taken, "the same settings have the same fate twice");
    require(slotsOf(*node) == after, "settings that are applied twice do what they did once");
}

} // namespace

void runOnce(std::string_view input)
{
    const std::string_view name = takeLine(input);
    const std::string text(input);
    checkParser(text);
    if (name == "Kinds")
        checkKinds(text);
    for (const NodeTypeEntry* type : nodeTypes())
        if (type->_name == name)
            checkNode(*type, text);
}

} // namespace Fuzz
