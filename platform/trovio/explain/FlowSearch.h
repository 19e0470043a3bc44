#pragma once

#include "trovio/routing/Scope.h"
#include <deque>

namespace Trovio {

/// Follows records from out-slots through routes and relaying nodes. Routes that do not connect are followed too, as
/// obstacles, and the way with the fewest of these is kept for every slot.
/// Threads: the tree lock is held for as long as this lives.
class FlowSearch {
public:
    using Entry = Scope::Entry;
    using Aim = Scope::Aim;

    /// A slot on the way; it is known by the entry of the namespace where it stands.
    struct Step {
        const Entry* _home = nullptr;
        const Entry* _before = nullptr; // home of the slot before; null for the first
        const Aim* _aim = nullptr;      // the route's, into an in-slot
        const Entry* _to = nullptr;     // as that route sees the in-slot
        std::size_t _obstacles = 0;     // on the way up to here
    };

    explicit FlowSearch(const std::vector<const Entry*>& starts);

    /// The way with the fewest obstacles to one of the ends, from its first slot to the last; empty if there is none.
    std::vector<Step> findPath(const std::vector<const Entry*>& ends) const;

    /// The out-slots, by their homes, that records get to without an obstacle.
    std::vector<const Entry*> reachedOuts() const;

    static const Entry* home(const Entry* entry);

    /// Calls visit(entry) for the slot's home and all labels under which it is seen above.
    template <class Visit>
    static void forEachView(const Entry& home, const Visit& visit)
    {
        visit(home);
        for (const Entry* shown : home._shown)
            forEachView(*shown, visit);
    }

private:
    void reach(const Step& step, bool obstacle);
    void followRoutes(const Step& from);
    void followRelay(const Step& from);

    std::unordered_map<const Entry*, Step> _steps;
    std::deque<Step> _waiting; // those with fewer obstacles first
};

} // namespace Trovio
