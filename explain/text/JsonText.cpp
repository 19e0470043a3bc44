#include "explain/text/JsonText.h"

#include "osg/LogText.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Explain {
namespace {

// JSON itself writes only the first 32 characters as codes. The others take one code unit each.
std::string withCodes(std::string_view json)
{
    std::string result;
    result.reserve(json.size());
    while (!json.empty()) {
        const auto plain = static_cast<std::size_t>(
            std::ranges::find_if(json, [](char byte) { return static_cast<unsigned char>(byte) >= 0x7F; }) -
            json.begin());
        result += json.substr(0, plain);
        json.remove_prefix(plain);
        const std::string_view character = json.substr(0, std::max<std::size_t>(osg::utf8Length(json), 1));
        if (osg::isControl(character))
            result += nlohmann::json(character).dump(-1, ' ', true).substr(1, 6);
        else
            result += character;
        json.remove_prefix(character.size());
    }
    return result;
}
} // namespace

std::string jsonText(const nlohmann::json& value, int indent)
{
    return withCodes(value.dump(indent, ' ', false, nlohmann::json::error_handler_t::replace));
}

std::string jsonText(const nlohmann::ordered_json& value, int indent)
{
    return withCodes(value.dump(indent, ' ', false, nlohmann::ordered_json::error_handler_t::replace));
}
} // namespace Explain
