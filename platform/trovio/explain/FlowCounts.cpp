#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Node.h"
#include "trovio/Settling.h"
#include "trovio/explain/FlowQuery.h"
#include "trovio/messages/TimeText.h"
#include <algorithm>
#include <cmath>
#include <optional>

// What the counters of slots and nodes tell about records on a way that is connected.
namespace Trovio {

Settling::~Settling() = default;

namespace {

double number(std::uint64_t count)
{
    return static_cast<double>(count);
}

/// Seconds since the stamp. Nothing for one that tells no age: 0, no number, or more in the future than clocks differ.
std::optional<double> ageOf(double stamp, double now)
{
    const bool isTold = std::isfinite(stamp) && stamp != 0.0 && stamp <= now + StampWatch::Tolerance;
    return isTold ? std::optional(now - stamp) : std::nullopt;
}

/// Where stamps do not advance only the counts tell: more was lost than in ten rounds of that reader.
bool lostTooMuch(const InSlotActivity& in)
{
    const std::uint64_t before = in._counts.overwritten - in._lostSinceTake;
    return number(in._lostSinceTake) > 10.0 * (1.0 + number(before) / number(in._counts.taken));
}

} // namespace

Explanation FlowQuery::walk(const std::vector<Step>& path) const
{
    Explanation cause;
    for (const Step& step : path) {
        const bool stops = step._home->_ends.out() ? stopsBeforeOut(*step._home, step._before, cause)
                                                   : stopsAtReader(*step._home, cause);
        if (stops)
            return cause;
    }
    // What the last node takes goes nowhere while it is degraded, such as towards a peer that is away.
    const Entry& end = *path.back()._home;
    return stateOf(end)._degraded ? degraded(end) : flowing(path);
}

bool FlowQuery::stopsBeforeOut(const Entry& home, const Entry* before, Explanation& cause) const
{
    return before ? stopsInNode(home, *before, cause) : stopsAtSource(home, cause);
}

bool FlowQuery::stopsAtSource(const Entry& home, Explanation& cause) const
{
    const OutSlotActivity out = home._ends.out()->getActivity();
    const double stamp = out._stamps._last.getSeconds();
    const bool stale = !home._ends.out()->isWrittenOnChange() && ageOf(stamp, _now).value_or(0) > _staleAfter;
    const NodeState state = stateOf(home);
    const std::string label = labelOf(home);
    if (state._degraded && (out._written == 0 || stale || stamp <= state._since.getSeconds()))
        cause = degraded(home);
    else if (out._written == 0)
        cause = neverWritten(home);
    else if (stale)
        cause = {Verdict::Stale,
                 "the last of " + std::to_string(out._written) + " records of '" + label + "' is " +
                     inSeconds(_now - stamp) + " old" + remarksOn(home) + recovery(home) + "; " + clocks(stamp),
                 {{"out-slot", label}, {"age", _now - stamp}, {"written", number(out._written)}}};
    return cause._verdict != Verdict::Flowing;
}

/// What a filter has not sent, nobody has sent to it.
Explanation FlowQuery::neverWritten(const Entry& home) const
{
    const std::string label = labelOf(home);
    Explanation cause{Verdict::NeverWritten,
                      "nobody has written into '" + label + "' yet" + remarksOn(home) + recovery(home),
                      {{"out-slot", label}}};
    if (const auto* const settling = dynamic_cast<const Settling*>(home._scope->_node))
        cause._details.push_back({"settles", settling->getSettlingTime()});
    if (!home._scope->isRelaying())
        return cause;
    for (const auto& [inLabel, same] : home._scope->_entries) {
        const Entry& in = same.front();
        if (!in._ends.in())
            continue;
        if (in._ends.in()->getCounts().stored != 0) {
            stopsInNode(home, in, cause);
            return cause;
        }
        const Entries producers = producersOf(in);
        cause._text +=
            "; nothing has come into '" + labelOf(in) + "'" + (producers.empty() ? ", and no route leads there" : "");
        for (const Entry* producer : producers)
            if (Explanation above; stopsAtSource(*producer, above))
                cause._text += ": " + above._text;
    }
    return cause;
}

/// The time of the source and of this machine.
std::string FlowQuery::clocks(double stamp) const
{
    return "its stamp says " + dateOf(Time(stamp)) + ", the clock of this machine " + dateOf(Time(_now));
}

NodeState FlowQuery::stateOf(const Entry& home)
{
    const Node* const node = home._scope->_node;
    return node ? node->askState(*home._ends._slot) : NodeState();
}

/// What the node knows of the slot beyond counts, to be put behind a text: a clock that is wrong makes new values old.
std::string FlowQuery::remarksOn(const Entry& home)
{
    std::string text;
    if (const Node* const node = home._scope->_node)
        for (const RemarkInfo& remark : node->askRemarks())
            if (remark._slot == home._label)
                text += "; " + remark._text;
    return text;
}

/// That the node runs only since then, to be put behind a text.
std::string FlowQuery::recovery(const Entry& home) const
{
    const NodeState state = stateOf(home);
    return state._overcome.empty() ? std::string()
                                   : "; node '" + nameOf(*home._scope) + "' is " + state.describe(Time(_now));
}

Explanation FlowQuery::degraded(const Entry& home) const
{
    const std::string name = nameOf(*home._scope);
    const NodeState state = stateOf(home);
    return {Verdict::NodeDegraded,
            "node '" + name + "' has been degraded for " + inSeconds(_now - state._since.getSeconds()) + ": " +
                state._reason,
            {{"node", name}, {"reason", state._reason}, {"since", state._since.getSeconds()}}};
}

bool FlowQuery::stopsInNode(const Entry& home, const Entry& before, Explanation& cause) const
{
    const OutSlotActivity out = home._ends.out()->getActivity();
    const InSlotActivity in = before._ends.in()->getActivity();
    const double behind = in._lastTaken.getSeconds() - out._stamps._last.getSeconds();
    if (out._written != 0 && (!(behind > _staleAfter) || home._ends.out()->isWrittenOnChange()))
        return false;
    const Node& node = *home._scope->_node;
    if (stateOf(home)._degraded) {
        cause = degraded(home);
        return true;
    }
    const std::string name = nameOf(*home._scope);
    cause = {Verdict::Filtered,
             "of " + std::to_string(in._counts.taken) + " records that '" + labelOf(before) + "' took, " +
                 std::to_string(out._written) + " came out of '" + labelOf(home) + "'",
             {{"node", name}, {"taken", number(in._counts.taken)}, {"written", number(out._written)}}};
    for (const CounterInfo& counter : node.getCounters()) {
        if (counter._value != 0)
            cause._text += ", " + counter._name + " " + std::to_string(counter._value);
        cause._details.push_back({counter._name, number(counter._value)});
    }
    cause._text += remarksOn(home);
    return true;
}

bool FlowQuery::stopsAtReader(const Entry& home, Explanation& cause) const
{
    const InSlotActivity in = home._ends.in()->getActivity();
    const InSlotCounts& counts = in._counts;
    const double behind = in._stamps._last.getSeconds() - in._lastTaken.getSeconds();
    if (counts.stored == 0 && in._notStored != 0) {
        cause = {Verdict::NotStored,
                 "nothing has been stored in '" + labelOf(home) + "'" + shortfallsAt(home),
                 {{"in-slot", labelOf(home)}, {"not stored", number(in._notStored)}}};
        return true;
    }
    const bool isBehind = behind > 0 ? behind > _staleAfter : lostTooMuch(in); // a stamp may stand still, or be none
    if (counts.waiting == 0 || (counts.taken != 0 && !isBehind && !in._readerInterrupted))
        return false;
    if (stateOf(home)._degraded) {
        cause = degraded(home);
        return true;
    }
    const std::string label = labelOf(home);
    const Details details{{"in-slot", label},
                          {"stored", number(counts.stored)},
                          {"overwritten", number(counts.overwritten)},
                          {"taken", number(counts.taken)},
                          {"waiting", number(counts.waiting)},
                          {"interrupts", number(in._interrupts)}};
    const std::string reader = counts.taken == 0 ? "nobody has taken a record from '" + label + "' yet"
                               : behind > 0      ? "the reader of '" + label + "' is " + inSeconds(behind) + " behind"
                                                 : "the reader of '" + label + "' takes nothing more";
    if (in._readerInterrupted)
        cause = {Verdict::Interrupted,
                 "the reader of '" + label + "' was interrupted (" + std::to_string(in._interrupts) +
                     " times in all) and has taken nothing since; " + std::to_string(counts.waiting) + " waiting",
                 details};
    else if (in._lostSinceTake != 0)
        cause = {Verdict::Overwritten,
                 reader + ": " + std::to_string(in._lostSinceTake) + " overwritten before they were read", details};
    else
        cause = {Verdict::Unread, reader + ": " + std::to_string(counts.waiting) + " waiting", details};
    cause._text += shortfallsAt(home);
    return true;
}

Explanation FlowQuery::flowing(const std::vector<Step>& path) const
{
    const OutSlotActivity out = path.front()._home->_ends.out()->getActivity();
    const InSlotCounts in = path.back()._home->_ends.in()->getCounts();
    Explanation answer{
        Verdict::Flowing,
        std::to_string(out._written) + " written, " + std::to_string(in.taken) + " taken, " +
            std::to_string(in.overwritten) + " overwritten",
        {{"written", number(out._written)}, {"taken", number(in.taken)}, {"overwritten", number(in.overwritten)}}};
    const double stamp = out._stamps._last.getSeconds();
    if (const auto age = ageOf(stamp, _now)) {
        answer._text += ", the last " + inSeconds(*age) + " old";
        answer._details.push_back({"age", *age});
    } else if (stamp > _now) {
        answer._text += ", the last stamped " + inSeconds(stamp - _now) + " in the future; " + clocks(stamp);
    }
    for (const Step& step : path)
        answer._text +=
            step._home->_ends.out() ? remarksOn(*step._home) : lossesAt(*step._home) + rivalsAt(*step._home);
    // Part of a node may be down while records go through the rest.
    const Scope* seen = nullptr;
    for (const Step& step : path) {
        if (step._home->_scope != seen && step._home->_scope->_node)
            answer._text += stateOf(*step._home)._degraded ? "; " + degraded(*step._home)._text : recovery(*step._home);
        seen = step._home->_scope;
    }
    return answer;
}

/// What was lost before it was read; nothing if nothing was.
std::string FlowQuery::lossesAt(const Entry& home) const
{
    const InSlotActivity in = home._ends.in()->getActivity();
    std::string text;
    if (in._counts.overwritten != 0)
        text = "; of " + std::to_string(in._counts.stored) + " that came to '" + labelOf(home) + "' " +
               std::to_string(in._counts.overwritten) + " were overwritten before they were read";
    return text + shortfallsAt(home);
}

/// What there was no memory or no time for, and what helps; nothing if there was.
std::string FlowQuery::shortfallsAt(const Entry& home) const
{
    const InSlotActivity in = home._ends.in()->getActivity();
    std::string text;
    if (in._notStored != 0)
        text += "; records not stored in '" + labelOf(home) + "' for want of memory: " + std::to_string(in._notStored) +
                "; shorter values or more memory help";
    if (in._cutShort != 0)
        text += "; frames that left records of '" + labelOf(home) + "' to the next: " + std::to_string(in._cutShort) +
                "; a larger buffer or a slower source helps";
    return text;
}

/// Where several write into one slot: who, and how much each of them.
std::string FlowQuery::rivalsAt(const Entry& home) const
{
    const Entries producers = producersOf(home);
    if (producers.size() < 2)
        return {};
    std::string text = "; " + std::to_string(producers.size()) + " write into '" + labelOf(home) + "':";
    for (const Entry* producer : producers)
        text += (producer == producers.front() ? " '" : ", '") + labelOf(*producer) + "' " +
                std::to_string(producer->_ends.out()->getWritten());
    return text;
}

/// The homes of the out-slots that are connected to an in-slot, in the order in which their routes came.
FlowQuery::Entries FlowQuery::producersOf(const Entry& home) const
{
    Entries producers;
    FlowSearch::forEachView(home, [&](const Entry& view) {
        for (const Scope::Aim* aim : view._scope->_aims.under(view._label)) {
            const Entry* const from = FlowSearch::home(aim->_from);
            if (view._scope->whyApart(*aim, view).empty() && std::ranges::find(producers, from) == producers.end())
                producers.push_back(from);
        }
    });
    return producers;
}

} // namespace Trovio
