#pragma once

#include "trovio/Explanation.h"
#include "trovio/explain/VisibleSlots.h"
#include <optional>

namespace Trovio {

/// The routes of a scope that have an end that nobody has, or both ends the wrong way round, and what was meant.
/// Threads: the tree lock is held for as long as this lives.
class MisnamedRoutes {
public:
    explicit MisnamedRoutes(const VisibleSlots& slots);

    /// The first route on the way from the slots reached so far to one of the ends that would lead there if its labels
    /// were right; nothing if none would.
    std::optional<Explanation> explainFirst(const SlotViewList& reached, const SlotViewList& ends) const;

private:
    /// A route that leads nowhere, and two labels that it may have been meant to join.
    struct Repair {
        const Route* _route;
        std::string _givenFrom, _givenTo; // as the route has them
        std::string _from, _to;
    };

    void addRepairs(const Route& route, const std::string& from, const std::string& to);
    const Repair* findFirst(const SlotViewList& reached, const SlotViewList& ends) const;
    Explanation explain(const Repair& repair) const;

    const VisibleSlots& _slots;
    const std::vector<std::string> _outs = _slots.labels(Slot::Direction::Out);
    const std::vector<std::string> _ins = _slots.labels(Slot::Direction::In);
    std::vector<Repair> _repairs;
};

/// Says, for programs, between which labels of which namespace a route would help.
Explanation withCure(Explanation cause, const VisibleSlots& slots, const std::string& from, const std::string& to);

} // namespace Trovio
