#include "trovio/explain/FlowQuery.h"
#include <algorithm>

// Which routes there are between two slots, and what is wrong with them.
namespace Trovio {

namespace {

/// Whether the route may lead to a slot of that label.
bool aimsAt(const RouteRule& route, const std::string& label)
{
    return Pattern(route._to.getText()).match(label).has_value();
}

} // namespace

Explanation FlowQuery::blocked(const Step& step) const
{
    const Slot& out = *step._before->_ends._slot;
    const Slot& in = *step._home->_ends._slot;
    const std::string from = labelOf(*step._before), to = labelOf(*step._home);
    const Details details{{"out-slot", from}, {"in-slot", to}, {"route", step._aim->_route->quoted()}};
    if (out.getTypeID() != in.getTypeID()) {
        Explanation cause{Verdict::TypesDiffer,
                          "'" + from + "' carries " + out.getTypeName() + ", '" + to + "' takes " + in.getTypeName() +
                              "; give both ends the same type",
                          details};
        cause._details.push_back({"out type", out.getTypeName()});
        cause._details.push_back({"in type", in.getTypeName()});
        return cause;
    }
    const Scope& scope = *step._to->_scope;
    return {scope._connecting ? Verdict::Loop : Verdict::NoRoute, scope.whyApart(*step._aim, *step._to), details};
}

Explanation FlowQuery::noWay(const std::string& to, const Entries& ends, const Entries& reached) const
{
    Explanation cause;
    std::string stray;
    for (const Entry* end : ends) {
        FlowSearch::forEachView(*FlowSearch::home(end), [&](const Entry& seen) {
            if (cause._verdict == Verdict::Flowing)
                cause = at(*seen._scope).badRoute(seen._label, ends, reached);
            if (stray.empty())
                stray = at(*seen._scope).strayRoute(seen._label);
        });
    }
    if (cause._verdict != Verdict::Flowing)
        return cause;
    const std::string last = labelOf(*reached.back());
    const Slot& out = *reached.back()->_ends._slot;
    const Slot& in = *ends.front()->_ends._slot;
    cause = {Verdict::NoRoute,
             "no route leads on from '" + last + "' (" + out.getTypeName() + ") to '" + to + "' (" + in.getTypeName() +
                 ")" + stray,
             {{"out-slot", last}, {"in-slot", to}}};
    if (out.getTypeID() == in.getTypeID())
        return withCure(std::move(cause), last, to);
    cause._text += "; a route alone would not join them, for their types differ";
    return cause;
}

/// The same questions, asked in a scope below; or above, where nothing is known of what stands beside this one.
FlowQuery FlowQuery::at(const Scope& scope) const
{
    std::vector<Below> below;
    const std::string prefix = nameOf(scope) + "/";
    for (const Below& known : _below) {
        if (&scope != &_here && known._path.starts_with(prefix))
            below.push_back({known._path.substr(prefix.size()), known._scope});
    }
    return {scope, &scope == &_here ? _below : below, _staleAfter};
}

/// What is wrong with a route that looks as if it were meant to lead here; flowing if there is none.
Explanation FlowQuery::badRoute(const std::string& to, const Entries& ends, const Entries& reached) const
{
    const std::vector<Repair> possible = repairs();
    if (const Repair* const repair = firstOf(possible, reached, ends))
        return misnamed(*repair);
    for (const Scope::Route* route : _here._routes.all()) {
        if (!aimsAt(*route, to) || !route->_aims.empty() || route->_from.isLiteral() || _here.findMatch(route->_from))
            continue;
        Explanation cause = noMatch(route->_from);
        cause._text = route->quoted() + ": " + cause._text;
        cause._details.push_back({"route", route->quoted()});
        return cause;
    }
    return {};
}

/// Of a route that leads here from a label that nobody has, or from an in-slot: nothing says that it was meant for what
/// was asked. Empty if there is none.
std::string FlowQuery::strayRoute(const std::string& to) const
{
    for (const Scope::Route* route : _here._routes.all()) {
        const std::string& start = route->_from.getText();
        if (aimsAt(*route, to) && route->_aims.empty() && route->_from.isLiteral() &&
            findEnds(start, Slot::Direction::Out).empty())
            return "; " + route->quoted() + " leads there from nothing: " + whyNoEnd(start, Slot::Direction::Out)._text;
    }
    return {};
}

} // namespace Trovio
