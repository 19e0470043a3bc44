#pragma once

#include "trovio/routing/Scope.h"
#include <deque>

namespace Trovio {

/// Calls visit(view) for the slot's home and all views of it above.
template <class Visit>
void forEachView(const SlotView& home, const Visit& visit)
{
    visit(home);
    for (const SlotView* shown : home._shown)
        forEachView(*shown, visit);
}

/// Follows records from out-slots through routes and relaying nodes. Routes that do not connect are followed too, as
/// obstacles, and the way with the fewest of these is kept for every slot.
/// Threads: the tree lock is held for as long as this lives.
class PathSearch {
public:
    /// A slot on the way, known by its home.
    struct Step {
        const SlotView* _home = nullptr;
        const SlotView* _before = nullptr;     // home of the slot before; null for the first
        const ResolvedRoute* _route = nullptr; // the one that leads into an in-slot
        const SlotView* _to = nullptr;         // the in-slot as that route sees it
        std::size_t _obstacles = 0;            // on the way up to here
    };

    explicit PathSearch(const std::vector<const SlotView*>& starts);

    /// The way with the fewest obstacles to one of the ends, from its first slot to the last; empty if there is none.
    std::vector<Step> findPath(const std::vector<const SlotView*>& ends) const;

    /// The out-slots, by their homes, that records get to without an obstacle.
    std::vector<const SlotView*> reachedOuts() const;

private:
    void reach(const Step& step, bool obstacle);
    void followRoutes(const Step& from);
    void followRelay(const Step& from);

    std::unordered_map<const SlotView*, Step> _steps;
    std::deque<Step> _waiting; // those with fewer obstacles first
};

} // namespace Trovio
