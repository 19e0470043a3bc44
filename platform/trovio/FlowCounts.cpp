#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/FlowQuery.h"
#include "trovio/Node.h"
#include <cmath>
#include <cstdio>
#include <optional>

// What the counters of slots and nodes tell about records on a way that is connected.
namespace Trovio {

namespace {

std::string inSeconds(double seconds)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.3g s", seconds);
    return text;
}

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
        cause = {Verdict::NeverWritten, "nobody has written into '" + label + "' yet", {{"out-slot", label}}};
    else if (stale)
        cause = {Verdict::Stale,
                 "the last of " + std::to_string(out._written) + " records of '" + label + "' is " +
                     inSeconds(_now - stamp) + " old" + remarkOn(home),
                 {{"out-slot", label}, {"age", _now - stamp}, {"written", number(out._written)}}};
    return cause._verdict != Verdict::Flowing;
}

NodeState FlowQuery::stateOf(const Entry& home)
{
    const Node* const node = home._scope->_node;
    return node ? node->getStateOf(*home._ends._slot) : NodeState();
}

/// A clock that is wrong makes new values old, and old ones new; what the node says of it goes behind a text.
std::string FlowQuery::remarkOn(const Entry& home)
{
    if (const Node* const node = home._scope->_node)
        for (const RemarkInfo& remark : node->getRemarks())
            if (remark._slot == home._label)
                return "; " + remark._text;
    return {};
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
    return true;
}

bool FlowQuery::stopsAtReader(const Entry& home, Explanation& cause) const
{
    const InSlotActivity in = home._ends.in()->getActivity();
    const InSlotCounts& counts = in._counts;
    const double behind = in._stamps._last.getSeconds() - in._lastTaken.getSeconds();
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
        answer._text +=
            ", the last stamped " + inSeconds(stamp - _now) + " in the future" + remarkOn(*path.front()._home);
    }
    // Part of a node may be down while records go through the rest.
    const Scope* seen = nullptr;
    for (const Step& step : path) {
        const Node* node = step._home->_scope->_node;
        if (node && step._home->_scope != seen && stateOf(*step._home)._degraded)
            answer._text += "; " + degraded(*step._home)._text;
        seen = step._home->_scope;
    }
    return answer;
}

} // namespace Trovio
