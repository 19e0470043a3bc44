#include "trovio/explain/MissingRoute.h"

#include "trovio/explain/MisnamedRoutes.h"
#include "trovio/explain/MissingSlot.h"

namespace Trovio {

namespace {

/// Whether the route may lead to a slot of that label.
bool mayLeadTo(const RouteRule& route, const std::string& label)
{
    return !route.isForTools() && Pattern(route._to.getText()).match(label).has_value();
}

/// What is wrong with a route that looks as if it were meant to lead to this label; nothing if there is none.
std::optional<Explanation> whyBadRoute(const VisibleSlots& slots, const std::string& label, const SlotViewList& ends,
                                       const SlotViewList& reached)
{
    if (auto misnamed = MisnamedRoutes(slots).explainFirst(reached, ends))
        return misnamed;
    for (const Route* route : slots.getScope().getRoutes().all()) {
        if (!mayLeadTo(*route, label) || !route->_resolved.empty() || route->_from.isLiteral() ||
            slots.getScope().findMatch(route->_from))
            continue;
        Explanation cause = whyNoMatch(slots, route->_from);
        cause._text = route->quoted() + ": " + cause._text;
        cause._details.push_back({"route", route->quoted()});
        return cause;
    }
    return std::nullopt;
}

/// Of a route that leads to this label from one that nobody has, or from an in-slot: nothing says that it was meant for
/// what was asked. Empty if there is none.
std::string strayRoute(const VisibleSlots& slots, const std::string& label)
{
    for (const Route* route : slots.getScope().getRoutes().all()) {
        const std::string& start = route->_from.getText();
        if (mayLeadTo(*route, label) && route->_resolved.empty() && route->_from.isLiteral() &&
            slots.find(start, Slot::Direction::Out).empty())
            return "; " + route->quoted() +
                   " leads there from nothing: " + whyNoSlot(slots, start, Slot::Direction::Out)._text;
    }
    return {};
}

/// That no route is there at all; the last out-slot that is reached could be the start of one.
Explanation noRouteAtAll(const VisibleSlots& slots, const std::string& label, const SlotView& end, const SlotView& last,
                         const std::string& remark)
{
    const Slot& out = *last._ref._slot;
    const Slot& in = *end._ref._slot;
    const std::string from = slots.labelOf(last);
    Explanation cause{Verdict::NoRoute,
                      "no route leads on from '" + from + "' (" + out.getTypeName() + ") to '" + label + "' (" +
                          in.getTypeName() + ")" + remark,
                      {{"out-slot", from}, {"in-slot", label}}};
    if (out.getTypeID() == in.getTypeID())
        return withCure(std::move(cause), slots, from, label);
    cause._text += "; a route alone would not join them, for their types differ";
    return cause;
}

} // namespace

Explanation whyBlocked(const VisibleSlots& slots, const PathSearch::Step& step)
{
    const Slot& out = *step._before->_ref._slot;
    const Slot& in = *step._home->_ref._slot;
    const std::string from = slots.labelOf(*step._before), to = slots.labelOf(*step._home);
    const std::vector<Explanation::Detail> details{
        {"out-slot", from}, {"in-slot", to}, {"route", step._route->_route->quoted()}};
    if (out.getTypeID() != in.getTypeID()) {
        Explanation cause{Verdict::TypesDiffer,
                          "'" + from + "' carries " + out.getTypeName() + ", '" + to + "' takes " + in.getTypeName() +
                              "; give both ends the same type",
                          details};
        cause._details.push_back({"out type", out.getTypeName()});
        cause._details.push_back({"in type", in.getTypeName()});
        return cause;
    }
    const Connector& connector = step._to->_scope->getConnector();
    return {connector.isRunning() ? Verdict::Loop : Verdict::NoRoute, connector.whyApart(*step._route, *step._to),
            details};
}

Explanation whyNoRoute(const VisibleSlots& slots, const std::string& label, const SlotViewList& ends,
                       const SlotViewList& reached)
{
    std::optional<Explanation> cause;
    std::string stray;
    for (const SlotView* end : ends) {
        forEachView(end->home(), [&](const SlotView& seen) {
            const VisibleSlots there = slots.at(*seen._scope);
            if (!cause)
                cause = whyBadRoute(there, seen._label, ends, reached);
            if (stray.empty())
                stray = strayRoute(there, seen._label);
        });
    }
    return cause ? *cause : noRouteAtAll(slots, label, *ends.front(), *reached.back(), stray);
}

} // namespace Trovio
