#include "scene/toml/TomlValue.h"

#include "explain/text/Escape.h"
#include "scene/toml/Problems.h"

#include <array>
#include <charconv>

#define TOML_SHARED_LIB 1
#include <toml++/toml.h>

namespace Scenes {

using namespace Explain;

namespace {

struct Describe {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(std::int64_t value) const { return "the whole number " + std::to_string(value); }
    std::string operator()(double value) const
    {
        std::array<char, 32> text{};
        const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
        return "the number " + std::string(text.begin(), end);
    }
    std::string operator()(const std::string& value) const { return "the text " + inQuotes(value); }
    std::string operator()(TomlValue::Date) const { return "a date or time"; }
    std::string operator()(const TomlValue::List& list) const { return "a list of " + std::to_string(list.size()); }
    std::string operator()(const TomlValue::Table&) const { return "a table"; }
};

Position positionOf(const toml::source_region& source)
{
    return {source.begin.line, source.begin.column};
}

TomlValue converted(const toml::node& node);

TomlValue::List convertedList(const toml::array& array)
{
    TomlValue::List list;
    list.reserve(array.size());
    for (const toml::node& element : array)
        list.push_back(converted(element));
    return list;
}

TomlValue::Table convertedTable(const toml::table& table)
{
    TomlValue::Table entries;
    entries.reserve(table.size());
    for (const auto& [key, value] : table)
        entries.push_back({std::string(key.str()), positionOf(key.source()), converted(value)});
    return entries;
}

TomlValue converted(const toml::node& node)
{
    TomlValue value{positionOf(node.source()), TomlValue::Date()};
    if (const auto* flag = node.as_boolean())
        value._data = flag->get();
    else if (const auto* whole = node.as_integer())
        value._data = whole->get();
    else if (const auto* number = node.as_floating_point())
        value._data = number->get();
    else if (const auto* text = node.as_string())
        value._data = text->get();
    else if (const auto* array = node.as_array())
        value._data = convertedList(*array);
    else if (const auto* table = node.as_table())
        value._data = convertedTable(*table);
    return value;
}
} // namespace

std::string described(const TomlValue& value)
{
    return std::visit(Describe(), value._data);
}

TomlValue parseToml(std::string_view text, Problems& problems)
{
    try {
        return converted(toml::parse(text));
    } catch (const toml::parse_error& error) {
        problems.add(positionOf(error.source()), escaped(error.description(), 300));
        return {{}, TomlValue::Table()};
    }
}
} // namespace Scenes
