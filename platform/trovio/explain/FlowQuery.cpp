#include "trovio/explain/FlowQuery.h"

namespace Trovio {

namespace {

std::string kindOf(Slot::Direction direction)
{
    return direction == Slot::Direction::Out ? "out-slot" : "in-slot";
}

} // namespace

FlowQuery::FlowQuery(const Scope& here, std::vector<Below> below, double staleAfter)
    : _here(here), _below(std::move(below)), _staleAfter(staleAfter), _now(Time::getCurrentTime().getSeconds())
{
}

Explanation FlowQuery::explain(const std::string& from, const std::string& to) const
{
    const Pattern pattern(from);
    const LabelTemplate target(to, pattern, LabelTemplate::Placeholders::None);
    if (pattern.isLiteral())
        return explainPair(from, to);
    Explanation answer = answered(from, to, noMatch(pattern));
    for (const std::string& label : labels(Slot::Direction::Out)) {
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

Explanation FlowQuery::answered(const std::string& from, const std::string& to, Explanation answer)
{
    const std::string ends = " from '" + from + "' to '" + to + "'";
    if (answer._verdict == Verdict::Flowing)
        answer._text = "records flow" + ends + ": " + answer._text;
    else
        answer._text = "nothing flows" + ends + ", " + toString(answer._verdict) + ": " + answer._text;
    return answer;
}

Explanation FlowQuery::findCause(const std::string& from, const std::string& to) const
{
    const Entries starts = findEnds(from, Slot::Direction::Out);
    const Entries ends = findEnds(to, Slot::Direction::In);
    const bool swapped = !findEnds(from, Slot::Direction::In).empty() && !findEnds(to, Slot::Direction::Out).empty();
    if (starts.empty()) {
        Explanation cause = whyNoEnd(from, Slot::Direction::Out, swapped);
        if (cause._verdict == Verdict::NoSuchLabel && ends.empty()) {
            const std::string other = whyNoEnd(to, Slot::Direction::In)._text;
            cause._text += (cause._text.ends_with('?') ? " " : "; ") + other;
            cause._details.push_back({"other end", other});
        }
        return cause;
    }
    if (ends.empty())
        return whyNoEnd(to, Slot::Direction::In, swapped);
    const FlowSearch search(starts);
    const std::vector<Step> path = search.findPath(ends);
    for (const Step& step : path) {
        if (step._obstacles != 0)
            return blocked(step);
    }
    return path.empty() ? noWay(to, ends, search.reachedOuts()) : walk(path);
}

FlowQuery::Entries FlowQuery::findEnds(const std::string& label, Slot::Direction direction) const
{
    Entries ends;
    for (const Entry* entry : _here._entries.under(label)) {
        if (entry->_ends._slot->getDirection() == direction)
            ends.push_back(entry);
    }
    return ends;
}

Explanation FlowQuery::whyNoEnd(const std::string& label, Slot::Direction direction, bool swapHelps) const
{
    const bool isSource = direction == Slot::Direction::Out;
    const Slot::Direction other = isSource ? Slot::Direction::In : Slot::Direction::Out;
    if (!findEnds(label, other).empty()) {
        Explanation cause{Verdict::WrongDirection,
                          "'" + label + "' is an " + kindOf(other) + ", but records " +
                              (isSource ? "come from" : "go to") + " an " + kindOf(direction) +
                              (swapHelps ? "; swap the two ends" : hint(meant(label, labels(direction)))),
                          {{"label", label}}};
        if (swapHelps)
            cause._details.push_back({"cure", "swap the two ends"});
        return cause;
    }
    const Entry* below = findBelow(label, direction);
    if (below && labelOf(*below) != label && !findEnds(labelOf(*below), direction).empty())
        return noSlot(label, {labelOf(*below)});
    return below ? hidden(label, *below) : noSlot(label, meant(label, labels(direction)));
}

Explanation FlowQuery::noSlot(const std::string& label, const std::vector<std::string>& near)
{
    Explanation cause{Verdict::NoSuchLabel, "no slot has the label '" + label + "'" + hint(near), {{"label", label}}};
    if (!near.empty())
        cause._details.push_back({"nearest", near.front()});
    return cause;
}

Explanation FlowQuery::noMatch(const Pattern& pattern) const
{
    constexpr std::size_t most = 3;
    const std::vector<std::string> known = labels(Slot::Direction::Out);
    std::string text =
        "pattern '" + pattern.getText() + "' matches none of " + std::to_string(known.size()) + " out-slots";
    for (std::size_t i = 0; i < std::min(most, known.size()); ++i)
        text += (i ? ", '" : ", such as '") + known[i] + "'";
    return {Verdict::NoMatch, text, {{"pattern", pattern.getText()}}};
}

/// A slot that a namespace below sees, written with or without the labels that lead there.
const Scope::Entry* FlowQuery::findBelow(const std::string& label, Slot::Direction direction) const
{
    for (const Below& below : _below) {
        const bool full = label.starts_with(below._path + "/");
        for (const Entry* seen : below._scope->_entries.under(full ? label.substr(below._path.size() + 1) : label))
            if (seen->_ends._slot->getDirection() == direction)
                return FlowSearch::home(seen);
    }
    return nullptr;
}

/// The last namespace that sees the slot is the one that does not show it.
Explanation FlowQuery::hidden(const std::string& label, const Entry& home) const
{
    const Entry* last = &home;
    while (!last->_shown.empty())
        last = &last->_shown.front();
    const std::string where = nameOf(*last->_scope);
    return {Verdict::NoExternalRoute,
            "slot '" + last->_label + "' stands in '" + where + "', but no external route of '" + where +
                "' shows it; add one whose pattern matches",
            {{"label", label}, {"namespace", where}, {"slot", last->_label}}};
}

std::vector<std::string> FlowQuery::labels(Slot::Direction direction) const
{
    std::set<std::string> found;
    for (const auto& [label, same] : _here._entries) {
        for (const Entry* entry : same) {
            if (entry->_ends._slot->getDirection() == direction)
                found.insert(label);
        }
    }
    return {found.begin(), found.end()};
}

std::string FlowQuery::labelOf(const Entry& home) const
{
    const Entry* seen = nullptr;
    FlowSearch::forEachView(home, [&](const Entry& view) {
        if (view._scope == &_here && !seen)
            seen = &view;
    });
    return seen ? seen->_label : nameOf(*home._scope) + "/" + home._label;
}

std::string FlowQuery::nameOf(const Scope& scope) const
{
    for (const Below& below : _below) {
        if (below._scope == &scope)
            return below._path;
    }
    return scope._label;
}

} // namespace Trovio
