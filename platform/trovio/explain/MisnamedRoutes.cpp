#include "trovio/explain/MisnamedRoutes.h"

#include "trovio/explain/MissingSlot.h"
#include "trovio/explain/PathSearch.h"
#include <map>

namespace Trovio {

namespace {

using Direction = Slot::Direction;

constexpr std::size_t maxRoutes = 32; // that are looked at: each costs a walk through all labels

} // namespace

MisnamedRoutes::MisnamedRoutes(const VisibleSlots& slots) : _slots(slots)
{
    std::size_t looked = 0;
    for (const Route* route : slots.getScope().getRoutes().all()) {
        if (route->isForTools() || route->_connections != 0 || looked++ >= maxRoutes)
            continue;
        if (route->_from.isLiteral())
            addRepairs(*route, route->_from.getText(), route->_to.getText());
        else if (!route->_resolved.empty())
            addRepairs(*route, route->_resolved.front()._source->_label, route->_resolved.front()._target);
    }
}

void MisnamedRoutes::addRepairs(const Route& route, const std::string& from, const std::string& to)
{
    if (!_slots.find(from, Direction::In).empty() && !_slots.find(to, Direction::Out).empty()) {
        _repairs.push_back({&route, from, to, to, from});
        return;
    }
    const auto meant = [&](const std::string& label, Direction direction, const auto& known) {
        return _slots.find(label, direction).empty() ? labelsMeant(_slots, label, known)
                                                     : std::vector<std::string>{label};
    };
    for (const std::string& start : meant(from, Direction::Out, _outs))
        for (const std::string& end : meant(to, Direction::In, _ins))
            if (start != from || end != to)
                _repairs.push_back({&route, from, to, start, end});
}

std::optional<Explanation> MisnamedRoutes::explainFirst(const SlotViewList& reached, const SlotViewList& ends) const
{
    const Repair* const first = findFirst(reached, ends);
    return first ? std::optional(explain(*first)) : std::nullopt;
}

const MisnamedRoutes::Repair* MisnamedRoutes::findFirst(const SlotViewList& reached, const SlotViewList& ends) const
{
    std::map<const SlotView*, const Repair*> firsts; // on the way to an out-slot, by its home
    for (const SlotView* home : reached)
        firsts[home] = nullptr;
    std::vector<bool> used(_repairs.size());
    for (std::size_t i = 0; i < _repairs.size(); ++i) {
        const Repair& repair = _repairs[i];
        const auto known = firsts.find(&_slots.find(repair._from, Direction::Out).front()->home());
        if (used[i] || known == firsts.end())
            continue;
        used[i] = true;
        const Repair* const first = known->second ? known->second : &repair;
        const PathSearch onward(_slots.find(repair._to, Direction::In));
        if (!onward.findPath(ends).empty())
            return first;
        for (const SlotView* home : onward.reachedOuts())
            firsts.try_emplace(home, first);
        i = static_cast<std::size_t>(-1); // with what can be reached now, look at all of them again
    }
    return nullptr;
}

Explanation MisnamedRoutes::explain(const Repair& repair) const
{
    const std::string route = repair._route->quoted();
    Explanation cause;
    if (repair._givenFrom == repair._to && repair._givenTo == repair._from) {
        cause = {Verdict::WrongDirection,
                 route + " leads the other way; swap its two ends",
                 {{"label", repair._givenFrom}, {"cure", "swap the two ends"}}};
    } else {
        cause = repair._givenFrom != repair._from ? whyNoSlot(_slots, repair._givenFrom, Direction::Out)
                                                  : whyNoSlot(_slots, repair._givenTo, Direction::In);
        cause._text = route + ": " + cause._text;
    }
    cause._details.push_back({"route", route});
    cause._details.push_back({"route from", repair._givenFrom});
    return withCure(std::move(cause), _slots, repair._from, repair._to);
}

Explanation withCure(Explanation cause, const VisibleSlots& slots, const std::string& from, const std::string& to)
{
    cause._details.push_back({"cure from", from});
    cause._details.push_back({"cure to", to});
    cause._details.push_back({"cure in", slots.getScope().getLabel()});
    return cause;
}

} // namespace Trovio
