#include "trovio/explain/ScopeInspection.h"

#include "trovio/Node.h"
#include "trovio/explain/PathSearch.h"
#include "trovio/routing/RouteProblems.h"
#include <algorithm>
#include <tuple>

namespace Trovio {

namespace {

/// Calls visit(route, to) for each pair of slots that a route leads between and of which the slot is one.
template <class Visit>
void forEachPair(const SlotView& home, const Visit& visit)
{
    forEachView(home, [&visit](const SlotView& view) {
        if (view._ref.in())
            for (const ResolvedRoute* route : view._scope->getResolvedRoutes().under(view._label))
                visit(*route, view);
        else
            for (const ResolvedRoute* route : view._leading)
                for (const SlotView* to : view._scope->getViews().under(route->_target))
                    visit(*route, *to);
    });
}

/// Whether the slot has a connection beside those that tools have made.
bool isActive(const SlotView& home)
{
    if (!home._ref._slot->isActive())
        return false;
    bool watched = false, used = false;
    forEachPair(home,
                [&](const ResolvedRoute& route, const SlotView&) { watched = watched || route._route->isForTools(); });
    if (!watched)
        return true;
    forEachPair(home, [&](const ResolvedRoute& route, const SlotView& to) {
        used = used || (!route._route->isForTools() && to._scope->getConnector().whyApart(route, to).empty());
    });
    return used;
}

void addCounts(const SlotView& home, SlotInfo& info)
{
    if (home._ref.out())
        info._out = home._ref.out()->getActivity();
    else
        info._in = home._ref.in()->getActivity();
}

void addActivity(const SlotView& home, SlotInfo& info)
{
    info._active = isActive(home);
    addCounts(home, info);
}

/// Without its activity.
SlotInfo describeSlot(const SlotView& view)
{
    const SlotRef& ref = view._ref;
    SlotInfo info{view._label, ref._slot->getDirection(), ref._slot->getTypeName(), !view._shownBy, {}, {}, {}, {}};
    const SlotView* home = &view;
    for (; home->_origin; home = home->_origin)
        info._home += home->_origin->_scope->getLabel() + "/";
    info._home += home->_label;
    return info;
}

SlotInfo inspectSlot(const SlotView& view)
{
    SlotInfo info = describeSlot(view);
    if (info._own)
        addActivity(view, info);
    return info;
}

std::vector<const SlotView*> sortedViews(const Scope& scope)
{
    std::vector<const SlotView*> views;
    for (const auto& [label, same] : scope.getViews()) {
        if (isForTools(label))
            continue;
        for (const SlotView* view : same)
            views.push_back(view);
    }
    std::sort(views.begin(), views.end(), [](const SlotView* left, const SlotView* right) {
        return std::tie(left->_label, left->_serial) < std::tie(right->_label, right->_serial);
    });
    return views;
}

/// Why a route that connects nothing does not. A mismatch is more to the point than an end that may still come.
std::string pendingReason(const Scope& scope, const Route& route, const RouteInfo& info)
{
    for (const RoutePair& pair : info._pairs) {
        if (!scope.getViews().under(pair._to).empty())
            return pair._reason;
    }
    if (!info._pairs.empty())
        return info._pairs.front()._reason;
    const SlotView* const start = scope.findMatch(route._from);
    if (!start)
        return noSlot(route._from.getText());
    return start->_ref.in() ? wrongDirection(route, *start) : noLabel(route, start->_label);
}

RouteInfo inspectRoute(const Scope& scope, const Route& route)
{
    RouteInfo info{route._from.getText(), route._to.getText(), {}, route._connections, {}};
    for (const ResolvedRoute* resolved : route._resolved) {
        const auto ends = scope.getViews().under(resolved->_target);
        if (ends.empty())
            info._pairs.push_back({resolved->_source->_label, resolved->_target, noSlot(resolved->_target)});
        for (const SlotView* to : ends)
            info._pairs.push_back(
                {resolved->_source->_label, resolved->_target, scope.getConnector().whyApart(*resolved, *to)});
    }
    if (info.isPending())
        info._reason = pendingReason(scope, route, info);
    return info;
}

} // namespace

void inspectScope(const Scope& scope, NamespaceInfo& info)
{
    for (const SlotView* view : sortedViews(scope))
        info._slots.push_back(inspectSlot(*view));
    for (const Route* route : scope.getRoutes().all())
        if (!route->isForTools())
            info._routes.push_back(inspectRoute(scope, *route));
    for (const ExternalRoute* route : scope.getExternalRoutes().all())
        info._externalRoutes.push_back({route->_from.getText(), route->_to.getText(), route->_shown.size()});
}

std::vector<SlotInfo> inspectSlots(const Scope& scope, const std::string& label)
{
    std::vector<SlotInfo> slots;
    for (const SlotView* view : scope.getViews().under(label)) {
        slots.push_back(describeSlot(*view));
        addActivity(view->home(), slots.back());
    }
    return slots;
}

NodeInfo inspectNode(const Node& node, bool isRelaying)
{
    return {node.getTypeName(), node.getState(), node.getCounters(), {}, isRelaying};
}

void addSeen(const Scope& scope, const std::string& label, std::vector<SlotInfo>& slots)
{
    for (const SlotView* view : scope.getViews().under(label)) {
        slots.push_back(describeSlot(*view));
        addCounts(view->home(), slots.back());
    }
}

void addUnseen(const Scope& scope, const std::string& path, const Scope& top, std::vector<SlotInfo>& slots)
{
    for (const auto& [label, same] : scope.getViews()) {
        if (isForTools(label))
            continue;
        for (const SlotView* view : same) {
            bool isSeen = view->_origin != nullptr; // by what the scope where it stands adds
            if (!isSeen)
                forEachView(*view, [&](const SlotView& above) { isSeen = isSeen || above._scope == &top; });
            if (isSeen)
                continue;
            slots.push_back(describeSlot(*view));
            slots.back()._label.clear();
            slots.back()._home = path + "/" + label;
            addCounts(*view, slots.back());
        }
    }
}

} // namespace Trovio
