#include "explain/NodeTypeJson.h"

#include "explain/text/JsonText.h"
#include "trovio/Node.h"

#include <nlohmann/json.hpp>
#include <sstream>

namespace Explain {
namespace {

using Json = nlohmann::ordered_json;

const char* kindName(Trovio::SettingKind kind)
{
    switch (kind) {
    case Trovio::SettingKind::Text:
        return "text";
    case Trovio::SettingKind::Bool:
        return "bool";
    case Trovio::SettingKind::Integer:
        return "integer";
    case Trovio::SettingKind::Number:
        return "number";
    case Trovio::SettingKind::Choice:
        return "choice";
    case Trovio::SettingKind::Endpoint:
        return "endpoint";
    case Trovio::SettingKind::File:
        break;
    }
    return "file";
}

Json choicesOf(const char* names)
{
    Json choices = Json::array();
    std::istringstream text(names);
    for (std::string choice; std::getline(text, choice, '|');)
        choices.push_back(choice);
    return choices;
}

Json toJson(const Trovio::Setting& setting)
{
    Json object{{"name", setting._name},
                {"meaning", setting._meaning},
                {"kind", kindName(setting._kind)},
                {"default", setting._default == nullptr ? Json() : Json(setting._default)},
                {"allowed", Trovio::describeAllowed(setting)}};
    if (setting._kind == Trovio::SettingKind::Integer || setting._kind == Trovio::SettingKind::Number) {
        object["lowest"] = setting._lowest;
        object["highest"] = setting._highest;
    }
    if (setting._kind == Trovio::SettingKind::Choice)
        object["choices"] = choicesOf(setting._choices);
    return object;
}
} // namespace

std::string nodeTypeLine(const Trovio::NodeTypeInfo& type)
{
    Json settings = Json::array();
    for (const Trovio::Setting& setting : type._settings)
        settings.push_back(toJson(setting));
    for (const Trovio::Setting& setting : Trovio::Node::commonSettings())
        settings.push_back(toJson(setting));
    return jsonText(Json{{"name", type._name},
                         {"description", type._description},
                         {"origin", type._origin},
                         {"problem", type._problem.empty() ? Json() : Json(type._problem)},
                         {"settings", std::move(settings)}}) +
           "\n";
}
} // namespace Explain
