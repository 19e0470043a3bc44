#include "trovio/explain/FlowQuery.h"

#include "trovio/explain/MissingRoute.h"
#include "trovio/explain/MissingSlot.h"

namespace Trovio {

namespace {

/// The answer as a whole sentence.
Explanation answered(const std::string& from, const std::string& to, Explanation answer)
{
    const std::string ends = " from '" + from + "' to '" + to + "'";
    if (answer._verdict == Verdict::Flowing)
        answer._text = "records flow" + ends + ": " + answer._text;
    else
        answer._text = "nothing flows" + ends + ", " + toString(answer._verdict) + ": " + answer._text;
    return answer;
}

} // namespace

FlowQuery::FlowQuery(const Scope& here, std::vector<VisibleSlots::Below> below, double staleAfter)
    : _slots(here, std::move(below)), _flow(_slots, staleAfter)
{
}

Explanation FlowQuery::explain(const std::string& from, const std::string& to) const
{
    const Pattern pattern(from);
    const LabelTemplate target(to, pattern, LabelTemplate::Placeholders::None);
    if (pattern.isLiteral())
        return explainPair(from, to);
    Explanation answer = answered(from, to, whyNoMatch(_slots, pattern));
    for (const std::string& label : _slots.labels(Slot::Direction::Out)) {
        const auto matched = pattern.match(label);
        const auto end = matched ? target.expand(*matched) : std::nullopt;
        if (!end)
            continue;
        answer = explainPair(label, *end);
        if (answer._verdict != Verdict::Flowing)
            break;
    }
    if (answer._verdict != Verdict::Flowing && to.find('*') != std::string::npos)
        answer._text += "; asked for '" + from + "' -> '" + to + "'";
    return answer;
}

Explanation FlowQuery::explainPair(const std::string& from, const std::string& to) const
{
    return answered(from, to, findCause(from, to));
}

Explanation FlowQuery::findCause(const std::string& from, const std::string& to) const
{
    using Direction = Slot::Direction;
    const SlotViewList starts = _slots.find(from, Direction::Out);
    const SlotViewList ends = _slots.find(to, Direction::In);
    const bool swapped = !_slots.find(from, Direction::In).empty() && !_slots.find(to, Direction::Out).empty();
    if (starts.empty()) {
        Explanation cause = whyNoSlot(_slots, from, Direction::Out, swapped);
        if (cause._verdict == Verdict::NoSuchLabel && ends.empty()) {
            const std::string other = whyNoSlot(_slots, to, Direction::In)._text;
            cause._text += (cause._text.ends_with('?') ? " " : "; ") + other;
            cause._details.push_back({"other end", other});
        }
        return cause;
    }
    if (ends.empty())
        return whyNoSlot(_slots, to, Direction::In, swapped);
    const PathSearch search(starts);
    const std::vector<PathSearch::Step> path = search.findPath(ends);
    for (const PathSearch::Step& step : path) {
        if (step._obstacles != 0)
            return whyBlocked(_slots, step);
    }
    if (path.empty())
        return whyNoRoute(_slots, to, ends, search.reachedOuts());
    Explanation answer = _flow.explain(path);
    for (const PathSearch::Step& step : path)
        answer._passes.push_back(_slots.labelOf(*step._home));
    return answer;
}

} // namespace Trovio
