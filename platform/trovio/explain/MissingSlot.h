#pragma once

#include "trovio/Explanation.h"
#include "trovio/explain/VisibleSlots.h"

// Why there is no slot of the label and direction that somebody asked for.
namespace Trovio {

/// Labels of that direction that were probably meant: they are right but for one thing, such as a node's slot without
/// the slot's label or without those of the namespaces before it or between, with one label too many in front, by the
/// node's type instead of its label, or misspelt.
std::vector<std::string> labelsMeant(const VisibleSlots& slots, const std::string& label,
                                     const std::vector<std::string>& known);

/// A way to the slot fails for want of it. swapHelps says that the other end is missing in the same way.
Explanation whyNoSlot(const VisibleSlots& slots, const std::string& label, Slot::Direction direction,
                      bool swapHelps = false);

/// The same for a pattern of out-slots.
Explanation whyNoMatch(const VisibleSlots& slots, const Pattern& pattern);

} // namespace Trovio
