#include "explain/text/Escape.h"
#include "explain/text/JsonText.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/NewRoute.h"
#include "monitor/answer/SlotMap.h"
#include "monitor/codec/ClientJson.h"
#include "osg/LogText.h"
#include "trovio/Root.h"

#include <nlohmann/json.hpp>

// What is changed by hand in scenes that run.
namespace Monitor {
namespace {

using Explain::inQuotes;
using Trovio::Slot;

int statusOf(ChangeRefused::Why why)
{
    return why == ChangeRefused::Why::IsBad ? 400 : why == ChangeRefused::Why::IsNotThere ? 404 : 409;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = osg::utf8Length(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

/// What the program lets be done.
template <class Function>
const Function& offered(const Context& context, Function SceneChanges::*which)
{
    const SceneChanges& changes = context._scene._sceneChanges;
    if (!(changes.*which))
        throw Refusal(404, "this program runs no scene that can be changed so, as 'ostrel-host run' does; its author "
                           "changes what it has by code");
    return changes.*which;
}

/// Has it done, and says what that was.
template <class... Parameters, class... Arguments>
Answer changed(const std::function<SceneChanges::Lines(Parameters...)>& change, Arguments&&... arguments)
{
    try {
        return jsonAnswer({{"done", change(std::forward<Arguments>(arguments)...)}});
    } catch (const ChangeRefused& refused) {
        throw Refusal(statusOf(refused._why), refused.what());
    }
}

SceneChanges::Settings settingsIn(const std::string& body)
{
    const auto read = readObject(body);
    if (!read)
        throw Refusal(400, R"(the body is no JSON object of settings, such as {"gain": 2, "in": "/wand Vec3f"})");
    SceneChanges::Settings settings;
    for (const auto& [name, value] : read->items()) {
        if (!value.is_string() && !value.is_number() && !value.is_boolean())
            throw Refusal(400, "the value of " + inQuotes(name) + " is " + inQuotes(Explain::jsonText(value)) +
                                   "; allowed are texts, numbers, true and false");
        settings.emplace_back(name, value.is_string() ? value.get<std::string>() : Explain::jsonText(value));
    }
    return settings;
}

/// The end of a route that is to come.
const SlotMap::Place& endOf(const SlotMap& map, const std::string& text, Slot::Direction direction)
{
    std::string problem;
    const SlotMap::Place* const place = map.find(text, problem, direction);
    if (!place)
        throw Refusal(404, problem);
    if (place->_slot->_direction != direction)
        throw Refusal(400, inQuotes(place->_label) +
                               (place->isOut() ? " is an out-slot, but a route ends at an in-slot; swap the two ends, "
                                                 "or name another"
                                               : " is an in-slot, but a route begins at an out-slot; swap the two "
                                                 "ends, or name another"));
    return *place;
}

/// With ends as the root calls them. A pattern stays as it is.
Answer addRoute(const Context& context, const SlotMap& map, const std::string& from, const std::string& to,
                const std::string& conversion)
{
    const auto& add = offered(context, &SceneChanges::_addRoute);
    if (from.find('*') != std::string::npos) {
        if (const std::string why = whyNoPattern(map, from, to); !why.empty())
            throw Refusal(400, why);
        return changed(add, from, to, conversion);
    }
    const SlotMap::Place &source = endOf(map, from, Slot::Direction::Out),
                         &target = endOf(map, to, Slot::Direction::In);
    if (const std::string why = whyNoRoute(map, source, target, !conversion.empty()); !why.empty())
        throw Refusal(400, why);
    return changed(add, source._label, target._label, conversion);
}

/// The end of a route that is there already, as the root calls it; what has no slot now stays as it is.
std::string knownEnd(const SlotMap& map, const std::string& text, Slot::Direction direction)
{
    std::string problem;
    const SlotMap::Place* const place = map.find(text, problem, direction);
    return place ? place->_label : text;
}

} // namespace

Answer answerReload(const Context& context, const Question& question)
{
    requireWriting(question);
    return changed(offered(context, &SceneChanges::_reload));
}

Answer answerNode(const Context& context, const Question& question)
{
    requireWriting(question);
    const auto& set = offered(context, &SceneChanges::_set);
    return changed(set, labelIn(question), settingsIn(question._body));
}

Answer answerRoute(const Context& context, const Question& question)
{
    requireWriting(question);
    const auto valueOf = [&question](const char* name) {
        const auto found = question._query.find(name);
        return found == question._query.end() ? std::string() : found->second;
    };
    const std::string from = valueOf("from"), to = valueOf("to"), conversion = valueOf("conversion");
    if (from.empty() || to.empty())
        throw Refusal(400, std::string(from.empty() ? "'from'" : "'to'") +
                               " is missing; a route has two ends, as in /route?from=A&to=B");
    for (const std::string& text : {from, to, conversion})
        if (!isUtf8(text))
            throw Refusal(400, inQuotes(text) + " is no UTF-8, which is all that stands in a scene");
    const SlotMap map(Trovio::Root::get().inspect(), placesOf(context));
    if (question._method == "PUT")
        return addRoute(context, map, from, to, conversion);
    if (!conversion.empty())
        throw Refusal(400, "a route that goes takes no 'conversion'; its ends name it");
    const auto& remove = offered(context, &SceneChanges::_removeRoute);
    return changed(remove, knownEnd(map, from, Slot::Direction::Out), knownEnd(map, to, Slot::Direction::In));
}

Answer answerChanges(const Context& context, const Question&)
{
    return {200, "application/toml; charset=utf-8", offered(context, &SceneChanges::_byHand)()};
}

Answer answerGiven(const Context& context, const std::string& label, const std::string& json)
{
    return changed(offered(context, &SceneChanges::_giveValue), label, json);
}

void noteGiven(const Context& context, const std::string& label, const std::string& json)
{
    if (context._scene._sceneChanges._noteValue)
        context._scene._sceneChanges._noteValue(label, json);
}

} // namespace Monitor
