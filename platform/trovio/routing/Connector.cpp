#include "trovio/routing/Connector.h"

#include "trovio/routing/AllOrNone.h"
#include "trovio/routing/Connection.h"
#include "trovio/routing/RouteProblems.h"

namespace Trovio {

void Connector::start()
{
    if (std::exchange(_running, true))
        return;
    try {
        allOrNone(
            _routes.all(), [this](const Route& route) { joinAll(route); },
            [this](const Route& route) { partAll(route); });
    } catch (...) {
        _running = false;
        throw;
    }
}

void Connector::stop() noexcept
{
    if (!_running)
        return;
    for (const Route* route : _routes.all())
        partAll(*route);
    _running = false;
    LoopGuard::retryHeld();
}

void Connector::join(const ResolvedRoute& route, const SlotView& to)
{
    if (!fits(route, to)) {
        reportOnce(*route._route, mismatch(route, to));
    } else if (_running) {
        if (const std::string loop = connect(route, to); !loop.empty())
            _loops.hold(route, to, loop);
    }
}

void Connector::part(const ResolvedRoute& route, const SlotView& to) noexcept
{
    if (!_running || !fits(route, to) || _loops.release(route, to))
        return;
    if (disconnect(route, to))
        LoopGuard::jointWent();
}

void Connector::joinAll(const ResolvedRoute& route)
{
    allOrNone(
        _views.under(route._target), [&](const SlotView& to) { join(route, to); },
        [&](const SlotView& to) { part(route, to); });
}

void Connector::partAll(const ResolvedRoute& route) noexcept
{
    for (const SlotView* to : _views.under(route._target))
        part(route, *to);
}

void Connector::joinAll(const Route& route)
{
    allOrNone(
        route._resolved, [this](const ResolvedRoute& resolved) { joinAll(resolved); },
        [this](const ResolvedRoute& resolved) { partAll(resolved); });
}

void Connector::partAll(const Route& route) noexcept
{
    for (const ResolvedRoute* resolved : route._resolved)
        partAll(*resolved);
}

std::string Connector::whyApart(const ResolvedRoute& route, const SlotView& to) const
{
    if (std::string problem = mismatch(route, to); !problem.empty())
        return problem;
    return _running ? _loops.whyHeld(route, to) : "the namespace was taken out";
}

} // namespace Trovio
