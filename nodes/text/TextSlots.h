#pragma once

#include "nodes/shared/SlotList.h"

namespace Trovio::Nodes {

/// A list of slots whose values texts carry: readSlotList(), and every type consists of numbers or is String.
std::vector<ListedSlot> readTextSlots(const Settings& settings, const char* setting, const ListedNames& names);

/// Throws InvalidFieldException where a slot of the setting `out` has the label of one of `in`.
void checkApart(const Settings& settings, const std::vector<ListedSlot>& in, const std::vector<ListedSlot>& out);

} // namespace Trovio::Nodes
