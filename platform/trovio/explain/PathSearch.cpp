#include "trovio/explain/PathSearch.h"

#include <algorithm>

namespace Trovio {

PathSearch::PathSearch(const std::vector<const SlotView*>& starts)
{
    for (const SlotView* start : starts)
        reach({&start->home()}, false);
    while (!_waiting.empty()) {
        const Step step = _waiting.front();
        _waiting.pop_front();
        if (step._obstacles > _steps.at(step._home)._obstacles)
            continue; // a better way was found meanwhile
        if (step._home->_ref.out())
            followRoutes(step);
        else
            followRelay(step);
    }
}

void PathSearch::reach(const Step& step, bool obstacle)
{
    const auto [known, isNew] = _steps.try_emplace(step._home, step);
    if (!isNew && known->second._obstacles <= step._obstacles)
        return;
    known->second = step;
    if (obstacle)
        _waiting.push_back(step);
    else
        _waiting.push_front(step);
}

void PathSearch::followRoutes(const Step& from)
{
    forEachView(*from._home, [&](const SlotView& view) {
        for (const ResolvedRoute* route : view._leading) {
            for (const SlotView* to : view._scope->getViews().under(route->_target)) {
                if (!to->_ref.in())
                    continue;
                const bool obstacle = !view._scope->getConnector().whyApart(*route, *to).empty();
                reach({&to->home(), from._home, route, to, from._obstacles + (obstacle ? 1 : 0)}, obstacle);
            }
        }
    });
}

void PathSearch::followRelay(const Step& from)
{
    if (!from._home->_ref._relay)
        return;
    for (const auto& [label, same] : from._home->_scope->getViews()) {
        for (const SlotView* view : same) {
            if (view->_ref.out() && !view->_shownBy)
                reach({view, from._home, nullptr, nullptr, from._obstacles}, false);
        }
    }
}

std::vector<PathSearch::Step> PathSearch::findPath(const std::vector<const SlotView*>& ends) const
{
    const Step* best = nullptr;
    for (const SlotView* end : ends) {
        const auto found = _steps.find(&end->home());
        if (found != _steps.end() && (!best || found->second._obstacles < best->_obstacles))
            best = &found->second;
    }
    std::vector<Step> path;
    for (const Step* step = best; step; step = step->_before ? &_steps.at(step->_before) : nullptr)
        path.insert(path.begin(), *step);
    return path;
}

std::vector<const SlotView*> PathSearch::reachedOuts() const
{
    std::vector<const SlotView*> reached;
    for (const auto& [home, step] : _steps) {
        if (home->_ref.out() && step._obstacles == 0)
            reached.push_back(home);
    }
    std::sort(reached.begin(), reached.end(), BySerial());
    return reached;
}

} // namespace Trovio
