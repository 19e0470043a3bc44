#pragma once

#include "trovio/Explanation.h"
#include "trovio/explain/FlowRemarks.h"
#include "trovio/explain/PathSearch.h"

namespace Trovio {

/// What the counters of slots and nodes tell about records on a way whose slots are connected.
/// Threads: the tree lock is held for as long as this lives.
class RecordFlow {
public:
    /// A record is stale, and a reader is behind, after so many seconds.
    RecordFlow(const VisibleSlots& slots, double staleAfter);

    /// The first slot on the way where records stop, or that they flow.
    Explanation explain(const std::vector<PathSearch::Step>& path) const;

private:
    // True, and the cause, where records stop at the slot. Slots are given by their homes.
    bool stopsAtSource(const SlotView& home, Explanation& cause) const;
    bool stopsInNode(const SlotView& home, const SlotView& before, Explanation& cause) const;
    bool stopsAtReader(const SlotView& home, Explanation& cause) const;

    Explanation neverWritten(const SlotView& home) const;
    Explanation filtered(const SlotView& home, const SlotView& before) const;
    Explanation notTaken(const SlotView& home, const InSlotActivity& in) const;
    Explanation degraded(const SlotView& home) const;
    Explanation flowing(const std::vector<PathSearch::Step>& path) const;

    const VisibleSlots& _slots;
    const double _staleAfter; // seconds
    const double _now;
    const FlowRemarks _remarks;
};

} // namespace Trovio
