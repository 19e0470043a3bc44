#include "trovio/routing/RouteProblems.h"

#include "trovio/messages/FrameworkLog.h"
#include <algorithm>

namespace Trovio {

bool fits(const ResolvedRoute& route, const SlotView& to)
{
    return to._ref.in() && route._source->_ref._slot->getTypeID() == to._ref._slot->getTypeID();
}

std::string mismatch(const ResolvedRoute& route, const SlotView& to)
{
    if (fits(route, to))
        return {};
    if (!to._ref.in())
        return wrongDirection(*route._route, to);
    return route._route->quoted() + ": '" + route._source->_label + "' carries " +
           route._source->_ref._slot->getTypeName() + ", '" + to._label + "' takes " + to._ref._slot->getTypeName() +
           "; give both ends the same type, or route to another slot";
}

std::string noSlot(const std::string& label)
{
    return "no slot has the label '" + label + "'";
}

std::string wrongDirection(const RouteRule& route, const SlotView& end)
{
    const bool isIn = end._ref.in();
    return route.quoted() + ": '" + end._label + "' is an " + (isIn ? "in-slot" : "out-slot") +
           ", but this end of a route must be an " + (isIn ? "out-slot" : "in-slot") +
           "; name another slot, or, where both ends are the wrong way round, swap them";
}

std::string noLabel(const RouteRule& route, const std::string& label)
{
    return route.quoted() + ": of '" + label + "' it makes a label of none or of more than " +
           std::to_string(MaxExpandedLength) + " bytes; use shorter labels";
}

std::string closesLoop(const RouteRule& route, const std::vector<Relay::Joint>& loop)
{
    constexpr std::size_t maxJoints = 20;
    std::string text = route.quoted() + " would close a loop of nodes: ";
    for (std::size_t i = 0; i < std::min(loop.size(), maxJoints); ++i)
        text += (i ? ", '" : "'") + *loop[i]._from + "' -> '" + *loop[i]._to + "'";
    if (loop.size() > maxJoints)
        text += ", and " + std::to_string(loop.size() - maxJoints) + " more";
    return text + "; take one of these routes away";
}

void reportOnce(Route& route, const std::string& problem)
{
    constexpr std::size_t maxReports = 100;
    if (!route.isForTools() && route._reported.size() < maxReports && route._reported.insert(problem).second)
        logMessage(osg::LogWarning, problem);
}

} // namespace Trovio
