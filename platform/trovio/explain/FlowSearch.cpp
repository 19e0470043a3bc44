#include "trovio/explain/FlowSearch.h"
#include <algorithm>

namespace Trovio {

FlowSearch::FlowSearch(const std::vector<const Entry*>& starts)
{
    for (const Entry* start : starts)
        reach({home(start)}, false);
    while (!_waiting.empty()) {
        const Step step = _waiting.front();
        _waiting.pop_front();
        if (step._obstacles > _steps.at(step._home)._obstacles)
            continue; // a better way was found meanwhile
        if (step._home->_ends.out())
            followRoutes(step);
        else
            followRelay(step);
    }
}

const Scope::Entry* FlowSearch::home(const Entry* entry)
{
    while (entry->_origin)
        entry = entry->_origin;
    return entry;
}

void FlowSearch::reach(const Step& step, bool obstacle)
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

void FlowSearch::followRoutes(const Step& from)
{
    forEachView(*from._home, [&](const Entry& view) {
        for (const Aim* aim : view._aims) {
            for (const Entry* to : view._scope->_entries.under(aim->_target)) {
                if (!to->_ends.in())
                    continue;
                const bool obstacle = !view._scope->whyApart(*aim, *to).empty();
                reach({home(to), from._home, aim, to, from._obstacles + (obstacle ? 1 : 0)}, obstacle);
            }
        }
    });
}

void FlowSearch::followRelay(const Step& from)
{
    if (!from._home->_ends._relay)
        return;
    for (const auto& [label, same] : from._home->_scope->_entries) {
        for (const Entry* entry : same) {
            if (entry->_ends.out() && !entry->_shownBy)
                reach({entry, from._home, nullptr, nullptr, from._obstacles}, false);
        }
    }
}

std::vector<FlowSearch::Step> FlowSearch::findPath(const std::vector<const Entry*>& ends) const
{
    const Step* best = nullptr;
    for (const Entry* end : ends) {
        const auto found = _steps.find(home(end));
        if (found != _steps.end() && (!best || found->second._obstacles < best->_obstacles))
            best = &found->second;
    }
    std::vector<Step> path;
    for (const Step* step = best; step; step = step->_before ? &_steps.at(step->_before) : nullptr)
        path.insert(path.begin(), *step);
    return path;
}

std::vector<const FlowSearch::Entry*> FlowSearch::reachedOuts() const
{
    std::vector<const Entry*> reached;
    for (const auto& [home, step] : _steps) {
        if (home->_ends.out() && step._obstacles == 0)
            reached.push_back(home);
    }
    std::sort(reached.begin(), reached.end(), BySerial());
    return reached;
}

} // namespace Trovio
