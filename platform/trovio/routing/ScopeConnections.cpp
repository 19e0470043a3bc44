#include "trovio/routing/Scope.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/routing/AllOrNone.h"
#include <algorithm>
#include <tuple>

// How routes become connections, and what is told about those that do not.
namespace Trovio {

namespace {

std::string noSlot(const std::string& label)
{
    return "no slot has the label '" + label + "'";
}

} // namespace

void Scope::join(const Aim& aim, const Entry& to)
{
    if (!fits(aim, to)) {
        report(*aim._route, mismatch(aim, to));
    } else if (_connecting) {
        if (const std::string loop = connect(aim, to); !loop.empty())
            holdBack(aim, to, loop);
    }
}

/// Nothing where the two are joined now, else why that would close a loop of nodes.
std::string Scope::connect(const Aim& aim, const Entry& to)
{
    const Ends& from = aim._from->_ends;
    const bool inGraph = relays(*aim._from, to);
    const Relay::Key key{aim._serial, to._serial};
    if (inGraph) {
        const auto loop = from._relay->connect(*to._ends._relay, key, {&aim._from->_label, &to._label});
        if (!loop.empty())
            return spellLoop(*aim._route, loop);
    }
    try {
        from.out()->connect(to._ends.in());
    } catch (...) {
        if (inGraph)
            from._relay->disconnect(*to._ends._relay, key);
        throw;
    }
    ++aim._route->_connections;
    return {};
}

void Scope::part(const Aim& aim, const Entry& to) noexcept
{
    if (!_connecting || !fits(aim, to))
        return;
    const Relay::Key key{aim._serial, to._serial};
    if (_looping.contains(key))
        return forgetLooping(key);
    aim._from->_ends.out()->disconnect(to._ends.in());
    --aim._route->_connections;
    if (relays(*aim._from, to) && aim._from->_ends._relay->disconnect(*to._ends._relay, key))
        _retryDue = true;
}

void Scope::startConnecting()
{
    if (std::exchange(_connecting, true))
        return;
    try {
        allOrNone(
            _routes.all(), [this](const Route& route) { joinAll(route); },
            [this](const Route& route) { partAll(route); });
    } catch (...) {
        _connecting = false;
        throw;
    }
}

void Scope::stopConnecting() noexcept
{
    if (!_connecting)
        return;
    for (const Route* route : _routes.all())
        partAll(*route);
    _connecting = false;
    retryLooping();
}

void Scope::joinAll(const Route& route)
{
    allOrNone(
        route._aims, [this](const Aim& aim) { joinAll(aim); }, [this](const Aim& aim) { partAll(aim); });
}

void Scope::partAll(const Route& route) noexcept
{
    for (const Aim* aim : route._aims)
        partAll(*aim);
}

void Scope::joinAll(const Aim& aim)
{
    allOrNone(
        _entries.under(aim._target), [&](const Entry& to) { join(aim, to); }, [&](const Entry& to) { part(aim, to); });
}

void Scope::partAll(const Aim& aim) noexcept
{
    for (const Entry* to : _entries.under(aim._target))
        part(aim, *to);
}

bool Scope::fits(const Aim& aim, const Entry& to)
{
    return to._ends.in() && aim._from->_ends._slot->getTypeID() == to._ends._slot->getTypeID();
}

/// Why the two do not fit; empty where they do.
std::string Scope::mismatch(const Aim& aim, const Entry& to) const
{
    if (fits(aim, to))
        return {};
    if (!to._ends.in())
        return wrongWay(*aim._route, to._label, "an out-slot", "in-slot");
    const Slot& from = *aim._from->_ends._slot;
    const Slot& target = *to._ends._slot;
    return aim._route->quoted() + ": '" + aim._from->_label + "' carries " + from.getTypeName() + ", '" + to._label +
           "' takes " + target.getTypeName() + "; give both ends the same type, or route to another slot";
}

std::string Scope::whyApart(const Aim& aim, const Entry& to) const
{
    if (const std::string problem = mismatch(aim, to); !problem.empty())
        return problem;
    if (!_connecting)
        return "the namespace was taken out";
    const auto looping = _looping.find({aim._serial, to._serial});
    return looping == _looping.end() ? std::string() : looping->second._reason;
}

std::string Scope::wrongWay(const Route& route, const std::string& label, const char* is, const char* must)
{
    return route.quoted() + ": '" + label + "' is " + is + ", but this end of a route must be an " + must +
           "; name another slot, or, where both ends are the wrong way round, swap them";
}

std::string Scope::tooLong(const RouteRule& route, const std::string& label)
{
    return route.quoted() + ": of '" + label + "' it makes a label of none or of more than " +
           std::to_string(MaxExpandedLength) + " bytes; use shorter labels";
}

void Scope::report(Route& route, const std::string& problem)
{
    // Labels may come from outside and without end; inspect() still tells of all.
    constexpr std::size_t maxReports = 100;
    if (route._reported.size() < maxReports && route._reported.insert(problem).second)
        logMessage(LogLevel::Warning, problem);
}

void Scope::inspect(NamespaceInfo& info) const
{
    for (const Entry* entry : sortedEntries())
        info._slots.push_back(inspectSlot(*entry));
    for (const Route* route : _routes.all())
        info._routes.push_back(inspectRoute(*route));
    for (const ExternalRoute* route : _externalRoutes.all())
        info._externalRoutes.push_back({route->_from.getText(), route->_to.getText(), route->_shown.size()});
}

SlotInfo Scope::inspectSlot(const Entry& entry)
{
    const Ends& ends = entry._ends;
    SlotInfo info{entry._label, ends._slot->getDirection(), ends._slot->getTypeName(), !entry._shownBy, {}, {}, {}};
    const Entry* home = &entry;
    for (; home->_origin; home = home->_origin)
        info._home += home->_origin->_scope->_label + "/";
    info._home += home->_label;
    if (info._own && ends.out())
        info._out = ends.out()->getActivity();
    if (info._own && ends.in())
        info._in = ends.in()->getActivity();
    return info;
}

std::vector<const Scope::Entry*> Scope::sortedEntries() const
{
    std::vector<const Entry*> entries;
    for (const auto& [label, same] : _entries) {
        for (const Entry* entry : same)
            entries.push_back(entry);
    }
    std::sort(entries.begin(), entries.end(), [](const Entry* left, const Entry* right) {
        return std::tie(left->_label, left->_serial) < std::tie(right->_label, right->_serial);
    });
    return entries;
}

RouteInfo Scope::inspectRoute(const Route& route) const
{
    RouteInfo info{route._from.getText(), route._to.getText(), {}, route._connections, {}};
    for (const Aim* aim : route._aims) {
        const auto ends = _entries.under(aim->_target);
        if (ends.empty())
            info._pairs.push_back({aim->_from->_label, aim->_target, noSlot(aim->_target)});
        for (const Entry* to : ends)
            info._pairs.push_back({aim->_from->_label, aim->_target, whyApart(*aim, *to)});
    }
    if (info.isPending())
        info._reason = pendingReason(route, info);
    return info;
}

std::string Scope::pendingReason(const Route& route, const RouteInfo& info) const
{
    // A mismatch is more to the point than an end that may still come.
    for (const RoutePair& pair : info._pairs) {
        if (!_entries.under(pair._to).empty())
            return pair._reason;
    }
    if (!info._pairs.empty())
        return info._pairs.front()._reason;
    const Entry* start = findMatch(route._from);
    if (!start)
        return noSlot(route._from.getText());
    return start->_ends.in() ? wrongWay(route, start->_label, "an in-slot", "out-slot") : tooLong(route, start->_label);
}

const Scope::Entry* Scope::findMatch(const Pattern& pattern) const
{
    if (pattern.isLiteral()) {
        const auto same = _entries.under(pattern.getText());
        return same.empty() ? nullptr : &same.front();
    }
    const auto found = std::find_if(_entries.begin(), _entries.end(),
                                    [&pattern](const auto& same) { return pattern.match(same.first).has_value(); });
    return found == _entries.end() ? nullptr : &found->second.front();
}

BasicInSlot* Scope::Ends::in() const
{
    return _slot->isInSlot() ? static_cast<BasicInSlot*>(_slot) : nullptr;
}

BasicOutSlot* Scope::Ends::out() const
{
    return _slot->isInSlot() ? nullptr : static_cast<BasicOutSlot*>(_slot);
}

} // namespace Trovio
