#include "trovio/explain/MissingSlot.h"

#include "trovio/messages/NearestName.h"
#include "trovio/routing/RouteProblems.h"

namespace Trovio {

namespace {

using Direction = Slot::Direction;

constexpr std::size_t maxNames = 3; // that one message tells

std::string kindOf(Direction direction)
{
    return direction == Direction::Out ? "out-slot" : "in-slot";
}

/// "; did you mean 'a' or 'b'?", or nothing.
std::string hint(const std::vector<std::string>& names)
{
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "; did you mean '" : " or '") + name + "'";
    return text.empty() ? text : text + "?";
}

Explanation unknownLabel(const std::string& label, const std::vector<std::string>& near)
{
    Explanation cause{Verdict::NoSuchLabel, noSlot(label) + hint(near), {{"label", label}}};
    if (!near.empty())
        cause._details.push_back({"nearest", near.front()});
    return cause;
}

/// The last namespace that sees the slot is the one that does not show it.
Explanation hidden(const VisibleSlots& slots, const std::string& label, const SlotView& home)
{
    const SlotView* last = &home;
    while (!last->_shown.empty())
        last = &last->_shown.front();
    const std::string where = slots.nameOf(*last->_scope);
    return {Verdict::NoExternalRoute,
            "slot '" + last->_label + "' stands in '" + where + "', but no external route of '" + where +
                "' shows it; add one whose pattern matches",
            {{"label", label}, {"namespace", where}, {"slot", last->_label}}};
}

Explanation otherDirection(const VisibleSlots& slots, const std::string& label, Direction direction, bool swapHelps)
{
    const bool isSource = direction == Direction::Out;
    const std::string cure =
        swapHelps ? "; swap the two ends" : hint(labelsMeant(slots, label, slots.labels(direction)));
    Explanation cause{Verdict::WrongDirection,
                      "'" + label + "' is an " + kindOf(isSource ? Direction::In : Direction::Out) + ", but records " +
                          (isSource ? "come from" : "go to") + " an " + kindOf(direction) + cure,
                      {{"label", label}}};
    if (swapHelps)
        cause._details.push_back({"cure", "swap the two ends"});
    return cause;
}

} // namespace

std::vector<std::string> labelsMeant(const VisibleSlots& slots, const std::string& label,
                                     const std::vector<std::string>& known)
{
    std::vector<std::string> names;
    const std::size_t slash = label.find('/');
    const std::string node = label.substr(0, slash);
    const std::string rest = slash == std::string::npos ? std::string() : label.substr(slash + 1);
    const auto leavesPartOut = [&](const std::string& name) {
        return name == rest || name.starts_with(label + "/") || name.ends_with("/" + label) ||
               (!rest.empty() && name.starts_with(node + "/") && name.ends_with("/" + rest));
    };
    for (const std::string& name : known)
        if (names.size() < maxNames && leavesPartOut(name))
            names.push_back(name);
    for (const std::string& ofType : slots.nodesOfType(node))
        for (const std::string& name : known)
            if (names.empty() && name == ofType + "/" + rest)
                names.push_back(name);
    if (names.empty())
        names.emplace_back(nearestName(label, std::vector<std::string_view>(known.begin(), known.end())));
    std::erase(names, std::string());
    return names;
}

Explanation whyNoSlot(const VisibleSlots& slots, const std::string& label, Direction direction, bool swapHelps)
{
    const Direction other = direction == Direction::Out ? Direction::In : Direction::Out;
    if (!slots.find(label, other).empty())
        return otherDirection(slots, label, direction, swapHelps);
    const SlotView* const below = slots.findBelow(label, direction);
    if (!below)
        return unknownLabel(label, labelsMeant(slots, label, slots.labels(direction)));
    const std::string seen = slots.labelOf(*below);
    return seen != label && !slots.find(seen, direction).empty() ? unknownLabel(label, {seen})
                                                                 : hidden(slots, label, *below);
}

Explanation whyNoMatch(const VisibleSlots& slots, const Pattern& pattern)
{
    const std::vector<std::string> known = slots.labels(Direction::Out);
    std::string text =
        "pattern '" + pattern.getText() + "' matches none of " + std::to_string(known.size()) + " out-slots";
    for (std::size_t i = 0; i < std::min(maxNames, known.size()); ++i)
        text += (i ? ", '" : ", such as '") + known[i] + "'";
    return {Verdict::NoMatch, text, {{"pattern", pattern.getText()}}};
}

} // namespace Trovio
