#pragma once

#include "trovio/Inspection.h"
#include "trovio/explain/VisibleSlots.h"
#include <optional>

namespace Trovio {

/// What nodes and counters tell of slots on a way, in words that stand behind others: each text is empty, or begins
/// with what separates it. Slots are given by their homes.
/// Threads: the tree lock is held for as long as this lives.
class FlowRemarks {
public:
    /// now in seconds since the epoch.
    FlowRemarks(const VisibleSlots& slots, double now) : _slots(slots), _now(now) {}

    /// Seconds since the stamp. Nothing for one that tells no age: 0, no number, or more in the future than clocks
    /// differ.
    std::optional<double> ageOf(double stamp) const;
    /// "its stamp says …, the clock of this machine …"
    std::string clocks(double stamp) const;

    static NodeState stateOf(const SlotView& home);
    /// What the node knows of the slot beyond counts: a clock that is wrong makes new values old.
    static std::string fromNode(const SlotView& home);
    /// That the node runs only since then.
    std::string recovery(const SlotView& home) const;

    /// What was lost before it was read, and what there was no memory or no time for.
    std::string losses(const SlotView& home) const;
    /// What there was no memory or no time for, and what helps.
    std::string shortfalls(const SlotView& home) const;
    /// Where several write into one slot: who, and how much each of them.
    std::string rivals(const SlotView& home) const;

    /// The homes of the out-slots that are connected to an in-slot, in the order in which their routes came.
    static SlotViewList producersOf(const SlotView& home);

private:
    const VisibleSlots& _slots;
    const double _now;
};

} // namespace Trovio
