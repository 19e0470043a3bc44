#include "trovio/routing/Scope.h"

#include "trovio/Exception.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/routing/AllOrNone.h"
#include "trovio/routing/RouteProblems.h"
#include <algorithm>

namespace Trovio {

void Scope::addSlot(const std::string& label, Slot& slot)
{
    if (label.empty() || label.size() > MaxLabelLength)
        throw Exception("a slot label has " + std::to_string(label.size()) + " bytes; allowed are 1 to " +
                        std::to_string(MaxLabelLength));
    if (findOwn(label))
        throw Exception("slot label '" + label + "' is taken; remove that slot first or use another label");
    insert(label, {&slot, _relay.get()}, nullptr, nullptr);
}

SlotView* Scope::findOwn(const std::string& label) const
{
    for (SlotView* view : _views.under(label)) {
        if (!view->_shownBy)
            return view;
    }
    return nullptr;
}

void Scope::removeSlot(const std::string& label) noexcept
{
    if (SlotView* const own = findOwn(label))
        erase(*own);
    LoopGuard::retryHeld();
}

void Scope::addRoute(const std::string& from, const std::string& to)
{
    Route& route = _routes.make(from, to, LabelTemplate::Placeholders::None);
    try {
        const std::vector<SlotView*> sources = matching(route._from);
        if (_connector.isRunning())
            LoopGuard::refuseLoop(route, sources, _views);
        for (SlotView* source : sources)
            resolve(route, *source, *route._from.match(source->_label));
    } catch (...) {
        erase(route);
        throw;
    }
}

bool Scope::removeRoute(const std::string& from, const std::string& to) noexcept
{
    Route* const route = _routes.find(from, to);
    if (!route)
        return false;
    erase(*route);
    LoopGuard::retryHeld();
    return true;
}

void Scope::erase(Route& route) noexcept
{
    while (!route._resolved.empty())
        drop(route._resolved.front());
    _routes.erase(route);
}

void Scope::addExternalRoute(const std::string& pattern, const std::string& target)
{
    ExternalRoute& route = _externalRoutes.make(pattern, target, LabelTemplate::Placeholders::NamespaceAndSlot);
    try {
        for (SlotView* view : matching(route._from))
            show(route, *view, *route._from.match(view->_label));
    } catch (...) {
        hide(route);
        _externalRoutes.erase(route);
        throw;
    }
}

bool Scope::removeExternalRoute(const std::string& pattern, const std::string& target) noexcept
{
    ExternalRoute* const route = _externalRoutes.find(pattern, target);
    if (!route)
        return false;
    hide(*route);
    _externalRoutes.erase(*route);
    LoopGuard::retryHeld();
    return true;
}

void Scope::attach(Scope& parent, const std::string& label)
{
    _label = label;
    _parent = &parent;
    try {
        for (ExternalRoute* route : _externalRoutes.all()) {
            for (SlotView* view : matching(route->_from))
                show(*route, *view, *route->_from.match(view->_label));
        }
    } catch (...) {
        detach();
        throw;
    }
}

void Scope::detach() noexcept
{
    for (ExternalRoute* route : _externalRoutes.all())
        hide(*route);
    _parent = nullptr;
    _label.clear();
    LoopGuard::retryHeld();
}

void Scope::clear() noexcept
{
    _connector.stop();
    _resolved.clear();
    _views.clear();
    _routes.clear();
    _externalRoutes.clear();
    _connector.start(); // finds nothing to do
}

SlotView& Scope::insert(std::string freshLabel, const SlotRef& ref, ExternalRoute* shownBy, SlotView* origin)
{
    SlotView& view = _views.make(std::move(freshLabel), *this, ref, shownBy, origin);
    try {
        allOrNone(
            _resolved.under(view._label), [&](const ResolvedRoute& route) { _connector.join(route, view); },
            [&](const ResolvedRoute& route) { _connector.part(route, view); });
    } catch (...) {
        _views.erase(view, view._label);
        throw;
    }
    if (shownBy) { // from here on erase() undoes everything
        shownBy->_shown.append(view);
        origin->_shown.append(view);
    }
    try {
        spread(view);
    } catch (...) {
        erase(view);
        throw;
    }
    return view;
}

/// To where routes lead from it, and into the parent.
void Scope::spread(SlotView& view)
{
    _routes.forEachMatch(view._label, [&](Route& route, const auto& matched) { resolve(route, view, matched); });
    _externalRoutes.forEachMatch(view._label,
                                 [&](ExternalRoute& route, const auto& matched) { show(route, view, matched); });
}

void Scope::erase(SlotView& view) noexcept
{
    while (!view._shown.empty())
        _parent->erase(view._shown.front());
    while (!view._leading.empty())
        drop(view._leading.front());
    for (const ResolvedRoute* route : _resolved.under(view._label))
        _connector.part(*route, view);
    if (view._shownBy) {
        view._shownBy->_shown.remove(view);
        view._origin->_shown.remove(view);
    }
    _views.erase(view, view._label);
}

/// To the label of the in-slot that the route leads to from this out-slot.
void Scope::resolve(Route& route, SlotView& source, const std::vector<std::string_view>& matched)
{
    if (isForTools(source._label) && !route.isForTools())
        return; // a '*' of somebody else's does not mean a tool's slot
    if (!source._ref.out()) {
        if (route._from.isLiteral()) // a pattern may well match in-slots beside the out-slots that it is meant for
            reportOnce(route, wrongDirection(route, source));
        return;
    }
    const auto target = route._to.expand(matched);
    if (!target || target->empty()) {
        reportOnce(route, noLabel(route, source._label));
        return;
    }
    ResolvedRoute& made = _resolved.make(*target, route, source);
    try {
        _connector.joinAll(made);
    } catch (...) {
        _resolved.erase(made, made._target);
        throw;
    }
    route._resolved.append(made);
    source._leading.append(made);
}

void Scope::drop(ResolvedRoute& resolved) noexcept
{
    _connector.partAll(resolved);
    resolved._route->_resolved.remove(resolved);
    resolved._source->_leading.remove(resolved);
    _resolved.erase(resolved, resolved._target);
}

void Scope::show(ExternalRoute& route, SlotView& view, const std::vector<std::string_view>& matched)
{
    if (!_parent)
        return;
    auto label = route._to.expand(matched, _label, view._label);
    if (!label || label->empty()) {
        logMessage(osg::LogWarning, "namespace '" + _label + "', external " + noLabel(route, view._label));
        return;
    }
    _parent->insert(std::move(*label), view._ref, &route, &view);
}

/// Takes all that the route shows out of the parent.
void Scope::hide(ExternalRoute& route) noexcept
{
    while (!route._shown.empty())
        _parent->erase(route._shown.front());
}

std::vector<SlotView*> Scope::matching(const Pattern& pattern)
{
    std::vector<SlotView*> views;
    if (pattern.isLiteral()) {
        for (SlotView* view : _views.under(pattern.getText()))
            views.push_back(view);
        return views;
    }
    for (const auto& [label, same] : _views) {
        if (!pattern.match(label))
            continue;
        for (SlotView* view : same)
            views.push_back(view);
    }
    std::sort(views.begin(), views.end(), BySerial());
    return views;
}

const SlotView* Scope::findMatch(const Pattern& pattern) const
{
    if (pattern.isLiteral()) {
        const auto same = _views.under(pattern.getText());
        return same.empty() ? nullptr : &same.front();
    }
    const auto found = std::find_if(_views.begin(), _views.end(), [&pattern](const auto& same) {
        return !isForTools(same.first) && pattern.match(same.first).has_value();
    });
    return found == _views.end() ? nullptr : &found->second.front();
}

} // namespace Trovio
