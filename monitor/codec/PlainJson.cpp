#include "monitor/codec/PlainJson.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>

namespace Monitor {

namespace {

using Json = nlohmann::json;

/// Fields of messages with one field, and those of messages with several, in their order.
constexpr std::string_view singles[] = {"data", "elements", "seconds", "values"};
constexpr std::string_view parts[] = {"r", "g", "b", "a", "x", "y", "z", "w"};

Json listOfParts(const Json& message)
{
    Json list = Json::array();
    for (const std::string_view part : parts)
        if (const auto found = message.find(part); found != message.end())
            list.push_back(*found);
    return list;
}

} // namespace

Json plainJson(const Json& message)
{
    if (message.is_array()) {
        Json list = Json::array();
        for (const Json& element : message)
            list.push_back(plainJson(element));
        return list;
    }
    if (!message.is_object() || message.empty())
        return message;
    if (message.size() == 1 && std::ranges::find(singles, message.begin().key()) != std::end(singles))
        return plainJson(*message.begin());
    Json list = listOfParts(message);
    return list.size() == message.size() ? list : message;
}

} // namespace Monitor
