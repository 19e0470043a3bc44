#include "monitor/codec/JsonReader.h"

#include "explain/text/Escape.h"

#include <cmath>
#include <limits>

namespace Monitor {

namespace {

using Json = nlohmann::json;

std::string foundText(const Json& json)
{
    if (json.is_string())
        return "the text " + Explain::inQuotes(json.get_ref<const std::string&>());
    if (json.is_array())
        return "a list of " + std::to_string(json.size());
    if (json.is_object())
        return "an object";
    return json.dump();
}

} // namespace

bool JsonReader::failAt(const Json& json)
{
    _problem = "value";
    for (const std::size_t position : _path)
        _problem += "[" + std::to_string(position) + "]";
    _problem += ": found " + foundText(json);
    return false;
}

bool JsonReader::isList(const Json& json, std::optional<std::size_t> length)
{
    return (json.is_array() && (!length || json.size() == *length)) || failAt(json);
}

bool JsonReader::get(const Json& json, bool& value)
{
    if (!json.is_boolean())
        return failAt(json);
    value = json.get<bool>();
    return true;
}

bool JsonReader::get(const Json& json, long& value)
{
    const bool isTooLarge =
        json.is_number_unsigned() && json.get<std::uint64_t>() > std::uint64_t(std::numeric_limits<long>::max());
    if (!json.is_number_integer() || isTooLarge)
        return failAt(json);
    value = json.get<long>();
    return true;
}

bool JsonReader::get(const Json& json, double& value)
{
    if (!json.is_number() && !json.is_null())
        return failAt(json);
    value = json.is_null() ? std::numeric_limits<double>::quiet_NaN() : json.get<double>();
    return true;
}

bool JsonReader::get(const Json& json, float& value)
{
    double exact = 0;
    if (!get(json, exact))
        return false;
    value = static_cast<float>(exact);
    return !std::isinf(value) || failAt(json);
}

bool JsonReader::get(const Json& json, std::string& value)
{
    if (!json.is_string())
        return failAt(json);
    value = json.get_ref<const std::string&>();
    return true;
}

bool JsonReader::get(const Json& json, Trovio::Image&)
{
    return failAt(json);
}

} // namespace Monitor
