#include "explain/ExplanationJson.h"
#include "explain/TreeWalk.h"
#include "explain/Why.h"
#include "explain/text/Escape.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/Standstill.h"
#include "trovio/Root.h"

#include <nlohmann/json.hpp>

namespace Monitor {
namespace {

using Json = nlohmann::ordered_json;

constexpr double staleAfter = 1.0; // seconds

/// The one slot that is meant, where the root sees it.
const SlotMap::Place* meant(const SlotMap& map, const std::string& text)
{
    std::string problem;
    const SlotMap::Place* const place = map.find(text, problem);
    return place && place->_seen ? place : nullptr;
}

/// Both as the root calls them, or else as they are, for the answer to say what is wrong: one of each would be looked
/// for in the wrong namespace.
Trovio::Explanation explainMeant(const SlotMap& map, const std::string& from, const std::string& to)
{
    const SlotMap::Place* const source = meant(map, from);
    const SlotMap::Place* const target = meant(map, to);
    return source && target ? Explain::explainLabels(source->_label, target->_label, staleAfter)
                            : Explain::explainLabels(from, to, staleAfter);
}

Answer whyPair(const SlotMap& map, const std::string& from, const std::string& to)
{
    const Trovio::Explanation found = explainMeant(map, from, to);
    Json object{{"from", from}, {"to", to}};
    object.update(Explain::explanationJson(found));
    const auto isSensor = [&map](const std::string& label) {
        std::string problem;
        const SlotMap::Place* const place = map.find(label, problem);
        return place && !place->_sensor.empty();
    };
    if (const std::string fits = Explain::whatFits(found, isSensor); !fits.empty())
        object["fits"] = fits;
    return jsonAnswer(object);
}

Answer whyAll(const SlotMap& map)
{
    Json list = Json::array();
    for (const Standstill& still : findStandstills(map, staleAfter)) {
        Json object{{"from", still._from}, {"to", still._to}};
        object.update(Explain::explanationJson(still._cause));
        if (still._more != 0)
            object["more"] = still._more;
        list.push_back(object);
    }
    return jsonAnswer(list);
}

} // namespace

Answer answerWhy(const Context& context, const Question& question)
{
    const auto from = question._query.find("from"), to = question._query.find("to");
    const auto none = question._query.end();
    if ((from == none) != (to == none))
        throw Refusal(400, "/why takes both labels, as in /why?from=A&to=B, or none to hear of everything that does "
                           "not flow");
    const SlotMap map(Trovio::Root::get().inspect(), placesOf(context));
    return from == none ? whyAll(map) : whyPair(map, from->second, to->second);
}

} // namespace Monitor
