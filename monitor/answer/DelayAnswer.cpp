#include "explain/text/Escape.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/SlotMap.h"
#include "monitor/tap/HopAges.h"
#include "trovio/Root.h"

#include <charconv>
#include <chrono>
#include <nlohmann/json.hpp>
#include <set>
#include <thread>

namespace Monitor {
namespace {

using Json = nlohmann::ordered_json;
using Clock = Trovio::RemarkInfo::SourceClock;

constexpr double usualSeconds = 2, maxSeconds = 60;
constexpr std::chrono::milliseconds pollInterval(1);

double secondsOf(const Question& question)
{
    const auto asked = question._query.find("seconds");
    if (asked == question._query.end())
        return usualSeconds;
    const std::string& text = asked->second;
    double seconds = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), seconds);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size() || !(seconds > 0 && seconds <= maxSeconds))
        throw Refusal(400, "'seconds' is " + Explain::inQuotes(text) + "; allowed is a number above 0, at most 60");
    return seconds;
}

const SlotMap::Place& placeOf(const SlotMap& map, const Question& question, const std::string& name, bool isOut)
{
    using Direction = Trovio::Slot::Direction;
    const auto asked = question._query.find(name);
    if (asked == question._query.end())
        throw Refusal(400, "'" + name + "' is missing, as in /delay?from=A&to=B");
    std::string problem;
    const SlotMap::Place* const place = map.find(asked->second, problem, isOut ? Direction::Out : Direction::In);
    if (!place)
        throw Refusal(404, problem);
    if (place->isOut() != isOut)
        throw Refusal(400,
                      "'" + name + "' is " + Explain::inQuotes(place->_label) + ", an " +
                          (isOut ? "in-slot; records come from an out-slot" : "out-slot; records go to an in-slot"));
    if (TapSet::isPattern(place->_label))
        throw Refusal(400, TapSet::whyNot(place->_label));
    if (!place->_seen)
        throw Refusal(404, Explain::inQuotes(place->_label) + " is not seen in the root; show it by external routes");
    return *place;
}

/// What the node of an out-slot knows of the clock that stamps its values; filters keep the stamps of what comes in.
const Clock* clockOf(const SlotMap& map, const SlotMap::Place& place, std::set<const SlotMap::Place*>& seen)
{
    if (!place._node || !seen.insert(&place).second)
        return nullptr;
    for (const Trovio::RemarkInfo& remark : place._node->_remarks)
        if (remark._slot == place._slot->_label && remark._clock)
            return &*remark._clock;
    if (place._node->_relays)
        for (const SlotMap::Joint& joint : map.joints())
            if (joint._to->_node == place._node)
                if (const Clock* const clock = clockOf(map, *joint._from, seen))
                    return clock;
    return nullptr;
}

void measure(HopAges& hops, double seconds, const Question& question)
{
    using Steady = std::chrono::steady_clock;
    const auto start = Steady::now();
    for (std::size_t polls = 0; std::chrono::duration<double>(Steady::now() - start).count() < seconds; ++polls) {
        if (polls % 100 == 0 && question._isOver && question._isOver())
            throw Refusal(503, "given up: the client waits no longer, or the program ends");
        std::this_thread::sleep_for(pollInterval);
        hops.poll();
    }
}

Json toJson(const HopAge& age)
{
    Json object{{"hop", age._label}, {"records", age._records}};
    for (const auto& [name, value] : {std::pair{"median", age._median},
                                      {"p99", age._p99},
                                      {"least", age._least},
                                      {"most", age._most},
                                      {"bound", age._bound}})
        object[name] = age._records == 0 ? Json() : Json(value);
    return object;
}

} // namespace

Answer answerDelay(const Context& context, const Question& question)
{
    const double seconds = secondsOf(question);
    const SlotMap map(Trovio::Root::get().inspect(), placesOf(context));
    const SlotMap::Place& from = placeOf(map, question, "from", true);
    const SlotMap::Place& to = placeOf(map, question, "to", false);
    const Trovio::Explanation way = Trovio::Root::get().explain(from._label, to._label);
    if (way._passes.empty())
        throw Refusal(404, way._text);
    HopAges hops(way._passes);
    measure(hops, seconds, question);
    // What is known of the clock now: it may not have been compared before.
    const SlotMap later(Trovio::Root::get().inspect(), {});
    std::string problem;
    std::set<const SlotMap::Place*> seen;
    const SlotMap::Place* const source = later.find(from._label, problem, Trovio::Slot::Direction::Out);
    const Clock* const clock = source ? clockOf(later, *source, seen) : nullptr;
    Json list = Json::array();
    for (const HopAge& age :
         hops.ages(clock ? HopAges::SourceClock{clock->_ahead, clock->_bound} : HopAges::SourceClock()))
        list.push_back(toJson(age));
    return jsonAnswer({{"from", from._label},
                       {"to", to._label},
                       {"seconds", seconds},
                       {"clock", clock ? Json{{"ahead", clock->_ahead}, {"bound", clock->_bound}} : Json()},
                       {"hops", list}});
}

} // namespace Monitor
