#pragma once

#include "trovio/routing/LoopGuard.h"

namespace Trovio {

/// Turns what the routes of one scope lead to into connections.
/// Invariant: while it is running, an out-slot and an in-slot are connected once for every route that leads from the
///            one's label to the other's, if their value types are equal and no loop of nodes is closed; otherwise not
///            by routes at all.
/// Memory:    what connects either happens or, when it throws, has not happened; what disconnects needs none.
/// Ownership: refers to the scope's views and routes.
/// Threads:   whoever holds the tree lock.
class Connector {
public:
    Connector(const SlotViews& views, const RouteRules<Route>& routes) : _views(views), _routes(routes) {}

    /// Makes all connections, and from then on those that appear. A new one does so from the beginning.
    void start();
    /// Undoes all connections and makes no more.
    void stop() noexcept;
    bool isRunning() const { return _running; }

    /// One pair, of which one has appeared or goes.
    void join(const ResolvedRoute& route, const SlotView& to);
    void part(const ResolvedRoute& route, const SlotView& to) noexcept;

    /// A resolved route with all slots that stand under its target.
    void joinAll(const ResolvedRoute& route);
    void partAll(const ResolvedRoute& route) noexcept;

    /// Why the two are not connected; empty if they are.
    std::string whyApart(const ResolvedRoute& route, const SlotView& to) const;

    /// See LoopGuard::leaveTree().
    void leaveTree() noexcept { _loops.leaveTree(); }

private:
    void joinAll(const Route& route);
    void partAll(const Route& route) noexcept;

    const SlotViews& _views;
    const RouteRules<Route>& _routes;
    LoopGuard _loops;
    bool _running = true;
};

} // namespace Trovio
