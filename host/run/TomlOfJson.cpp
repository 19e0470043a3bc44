#include "host/run/TomlOfJson.h"

#include "explain/text/JsonText.h"

#include <limits>
#include <nlohmann/json.hpp>

namespace Host {

using nlohmann::json;
using Scenes::TomlValue;

// Plain values are written alike in both, texts as well: every escape of JSON is one of TOML.
std::optional<std::string> tomlText(const json& value)
{
    if (value.is_object() || value.is_discarded())
        return std::nullopt;
    if (value.is_null())
        return "nan";
    if (!value.is_array())
        return Explain::jsonText(value);
    std::string list;
    for (const auto& element : value) {
        const auto text = tomlText(element);
        if (!text)
            return std::nullopt;
        list += (list.empty() ? "" : ", ") + *text;
    }
    return "[" + list + "]";
}

std::optional<TomlValue> tomlValue(const json& from)
{
    TomlValue value;
    if (from.is_array()) {
        TomlValue::List list;
        for (const auto& element : from) {
            auto read = tomlValue(element);
            if (!read)
                return std::nullopt;
            list.push_back(std::move(*read));
        }
        value._data = std::move(list);
    } else if (from.is_boolean())
        value._data = from.get<bool>();
    else if (from.is_number_integer())
        value._data = from.get<std::int64_t>();
    else if (from.is_number())
        value._data = from.get<double>();
    else if (from.is_string())
        value._data = from.get<std::string>();
    else if (from.is_null())
        value._data = std::numeric_limits<double>::quiet_NaN();
    else
        return std::nullopt;
    return value;
}
} // namespace Host
