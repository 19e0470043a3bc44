#include "trovio/explain/RecordFlow.h"

#include "trovio/Node.h"
#include "trovio/Settling.h"
#include "trovio/messages/TimeText.h"

namespace Trovio {

namespace {

double number(std::uint64_t count)
{
    return static_cast<double>(count);
}

double newest(const InSlotActivity& in)
{
    return in._stamps._last.getSeconds();
}

/// Where stamps do not advance only the counts tell: more was lost than in ten rounds of that reader.
bool lostTooMuch(const InSlotActivity& in)
{
    const std::uint64_t before = in._counts.overwritten - in._lostSinceTake;
    return number(in._lostSinceTake) > 10.0 * (1.0 + number(before) / number(in._counts.taken));
}

} // namespace

RecordFlow::RecordFlow(const VisibleSlots& slots, double staleAfter)
    : _slots(slots), _staleAfter(staleAfter), _now(Time::getCurrentTime().getSeconds()), _remarks(slots, _now)
{
}

Explanation RecordFlow::explain(const std::vector<PathSearch::Step>& path) const
{
    Explanation cause;
    for (const PathSearch::Step& step : path) {
        const SlotView& home = *step._home;
        const bool stops = home._ref.in() ? stopsAtReader(home, cause)
                           : step._before ? stopsInNode(home, *step._before, cause)
                                          : stopsAtSource(home, cause);
        if (stops)
            return cause;
    }
    // What the last node takes goes nowhere while it is degraded, such as towards a peer that is away.
    const SlotView& end = *path.back()._home;
    return FlowRemarks::stateOf(end)._degraded ? degraded(end) : flowing(path);
}

bool RecordFlow::stopsAtSource(const SlotView& home, Explanation& cause) const
{
    const OutSlotActivity out = home._ref.out()->getActivity();
    const double stamp = out._stamps._last.getSeconds();
    const bool stale = !home._ref.out()->isWrittenOnChange() && _remarks.ageOf(stamp).value_or(0) > _staleAfter;
    const NodeState state = FlowRemarks::stateOf(home);
    const std::string label = _slots.labelOf(home);
    if (state._degraded && (out._written == 0 || stale || stamp <= state._since.getSeconds()))
        cause = degraded(home);
    else if (out._written == 0)
        cause = neverWritten(home);
    else if (stale)
        cause = {Verdict::Stale,
                 "the last of " + std::to_string(out._written) + " records of '" + label + "' is " +
                     inSeconds(_now - stamp) + " old" + FlowRemarks::fromNode(home) + _remarks.recovery(home) + "; " +
                     _remarks.clocks(stamp),
                 {{"out-slot", label}, {"age", _now - stamp}, {"written", number(out._written)}}};
    return cause._verdict != Verdict::Flowing;
}

/// What a filter has not sent, nobody has sent to it.
Explanation RecordFlow::neverWritten(const SlotView& home) const
{
    const std::string label = _slots.labelOf(home);
    Explanation cause{Verdict::NeverWritten,
                      "nobody has written into '" + label + "' yet" + FlowRemarks::fromNode(home) +
                          _remarks.recovery(home),
                      {{"out-slot", label}}};
    if (const auto* const settling = dynamic_cast<const Settling*>(home._scope->getNode()))
        cause._details.push_back({"settles", settling->getSettlingTime()});
    if (!home._scope->isRelaying())
        return cause;
    for (const auto& [inLabel, same] : home._scope->getViews()) {
        const SlotView& in = same.front();
        if (!in._ref.in())
            continue;
        if (in._ref.in()->getCounts().stored != 0) {
            stopsInNode(home, in, cause);
            return cause;
        }
        const SlotViewList producers = FlowRemarks::producersOf(in);
        cause._text += "; nothing has come into '" + _slots.labelOf(in) + "'" +
                       (producers.empty() ? ", and no route leads there" : "");
        for (const SlotView* producer : producers)
            if (Explanation above; stopsAtSource(*producer, above))
                cause._text += ": " + above._text;
    }
    return cause;
}

Explanation RecordFlow::degraded(const SlotView& home) const
{
    const std::string name = _slots.nameOf(*home._scope);
    const NodeState state = FlowRemarks::stateOf(home);
    return {Verdict::NodeDegraded,
            "node '" + name + "' has been degraded for " + inSeconds(_now - state._since.getSeconds()) + ": " +
                state._reason,
            {{"node", name}, {"reason", state._reason}, {"since", state._since.getSeconds()}}};
}

bool RecordFlow::stopsInNode(const SlotView& home, const SlotView& before, Explanation& cause) const
{
    const OutSlotActivity out = home._ref.out()->getActivity();
    const InSlotActivity in = before._ref.in()->getActivity();
    const double behind = in._lastTaken.getSeconds() - out._stamps._last.getSeconds();
    if (out._written != 0 && (!(behind > _staleAfter) || home._ref.out()->isWrittenOnChange()))
        return false;
    cause = FlowRemarks::stateOf(home)._degraded ? degraded(home) : filtered(home, before);
    return true;
}

Explanation RecordFlow::filtered(const SlotView& home, const SlotView& before) const
{
    const std::uint64_t taken = before._ref.in()->getCounts().taken, written = home._ref.out()->getWritten();
    Explanation cause{Verdict::Filtered,
                      "of " + std::to_string(taken) + " records that '" + _slots.labelOf(before) + "' took, " +
                          std::to_string(written) + " came out of '" + _slots.labelOf(home) + "'",
                      {{"node", _slots.nameOf(*home._scope)}, {"taken", number(taken)}, {"written", number(written)}}};
    for (const CounterInfo& counter : home._scope->getNode()->getCounters()) {
        if (counter._value != 0)
            cause._text += ", " + counter._name + " " + std::to_string(counter._value);
        cause._details.push_back({counter._name, number(counter._value)});
    }
    cause._text += FlowRemarks::fromNode(home);
    return cause;
}

bool RecordFlow::stopsAtReader(const SlotView& home, Explanation& cause) const
{
    const InSlotActivity in = home._ref.in()->getActivity();
    const InSlotCounts& counts = in._counts;
    if (counts.stored == 0 && in._notStored != 0) {
        const std::string label = _slots.labelOf(home);
        cause = {Verdict::NotStored,
                 "nothing has been stored in '" + label + "'" + _remarks.shortfalls(home),
                 {{"in-slot", label}, {"not stored", number(in._notStored)}}};
        return true;
    }
    const double behind = newest(in) - in._lastTaken.getSeconds();
    const bool isBehind = behind > 0 ? behind > _staleAfter : lostTooMuch(in); // a stamp may stand still, or be none
    if (counts.waiting == 0 || (counts.taken != 0 && !isBehind && !in._readerInterrupted))
        return false;
    cause = FlowRemarks::stateOf(home)._degraded ? degraded(home) : notTaken(home, in);
    return true;
}

Explanation RecordFlow::notTaken(const SlotView& home, const InSlotActivity& in) const
{
    const InSlotCounts& counts = in._counts;
    const std::string label = _slots.labelOf(home);
    const double behind = newest(in) - in._lastTaken.getSeconds();
    const std::string reader = counts.taken == 0 ? "nobody has taken a record from '" + label + "' yet"
                               : behind > 0      ? "the reader of '" + label + "' is " + inSeconds(behind) + " behind"
                                                 : "the reader of '" + label + "' takes nothing more";
    const std::string waiting = std::to_string(counts.waiting) + " waiting";
    Explanation cause{Verdict::Unread,
                      reader + ": " + waiting,
                      {{"in-slot", label},
                       {"stored", number(counts.stored)},
                       {"overwritten", number(counts.overwritten)},
                       {"taken", number(counts.taken)},
                       {"waiting", number(counts.waiting)},
                       {"interrupts", number(in._interrupts)}}};
    if (in._readerInterrupted) {
        cause._verdict = Verdict::Interrupted;
        cause._text = "the reader of '" + label + "' was interrupted (" + std::to_string(in._interrupts) +
                      " times in all) and has taken nothing since; " + waiting;
    } else if (in._lostSinceTake != 0) {
        cause._verdict = Verdict::Overwritten;
        cause._text = reader + ": " + std::to_string(in._lostSinceTake) + " overwritten before they were read";
    }
    cause._text += _remarks.shortfalls(home);
    return cause;
}

Explanation RecordFlow::flowing(const std::vector<PathSearch::Step>& path) const
{
    const OutSlotActivity out = path.front()._home->_ref.out()->getActivity();
    const InSlotCounts in = path.back()._home->_ref.in()->getCounts();
    Explanation answer{
        Verdict::Flowing,
        std::to_string(out._written) + " written, " + std::to_string(in.taken) + " taken, " +
            std::to_string(in.overwritten) + " overwritten",
        {{"written", number(out._written)}, {"taken", number(in.taken)}, {"overwritten", number(in.overwritten)}}};
    const double stamp = out._stamps._last.getSeconds();
    if (const auto age = _remarks.ageOf(stamp)) {
        answer._text += ", the last " + inSeconds(*age) + " old";
        answer._details.push_back({"age", *age});
    } else if (stamp > _now) {
        answer._text += ", the last stamped " + inSeconds(stamp - _now) + " in the future; " + _remarks.clocks(stamp);
    }
    for (const PathSearch::Step& step : path)
        answer._text += step._home->_ref.out() ? FlowRemarks::fromNode(*step._home)
                                               : _remarks.losses(*step._home) + _remarks.rivals(*step._home);
    // Part of a node may be down while records go through the rest.
    const Scope* seen = nullptr;
    for (const PathSearch::Step& step : path) {
        const SlotView& home = *step._home;
        if (home._scope != seen && home._scope->getNode())
            answer._text +=
                FlowRemarks::stateOf(home)._degraded ? "; " + degraded(home)._text : _remarks.recovery(home);
        seen = home._scope;
    }
    return answer;
}

} // namespace Trovio
