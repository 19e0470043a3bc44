#pragma once

#include "trovio/Explanation.h"
#include "trovio/explain/PathSearch.h"
#include "trovio/explain/VisibleSlots.h"

// Why no routes lead from one slot to another.
namespace Trovio {

/// A route leads into the step's slot, but does not connect it.
Explanation whyBlocked(const VisibleSlots& slots, const PathSearch::Step& step);

/// Nothing leads from the out-slots that are reached to one of the ends, whose label is given.
Explanation whyNoRoute(const VisibleSlots& slots, const std::string& label, const SlotViewList& ends,
                       const SlotViewList& reached);

} // namespace Trovio
