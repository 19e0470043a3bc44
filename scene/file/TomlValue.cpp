#include "scene/file/TomlValue.h"

#include "explain/text/Escape.h"

#include <array>
#include <charconv>

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
} // namespace

std::string described(const TomlValue& value)
{
    return std::visit(Describe(), value._data);
}
} // namespace Scenes
