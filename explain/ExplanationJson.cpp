#include "explain/ExplanationJson.h"

#include <cmath>
#include <nlohmann/json.hpp>

namespace Explain {
namespace {

nlohmann::ordered_json toJson(const std::string& text)
{
    return text;
}

nlohmann::ordered_json toJson(double number)
{
    constexpr double maxExact = 9007199254740992; // 2 to the power of 53
    if (number != std::trunc(number) || std::abs(number) > maxExact)
        return number;
    return static_cast<std::int64_t>(number);
}
} // namespace

nlohmann::ordered_json explanationJson(const Trovio::Explanation& explanation)
{
    nlohmann::ordered_json object{{"verdict", toString(explanation._verdict)},
                                  {"text", explanation._text},
                                  {"details", nlohmann::ordered_json::object()}};
    for (const Trovio::Explanation::Detail& detail : explanation._details)
        std::visit([&](const auto& value) { object["details"][detail._name] = toJson(value); }, detail._value);
    return object;
}
} // namespace Explain
