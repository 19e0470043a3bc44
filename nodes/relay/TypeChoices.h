#pragma once

#include "trovio/SlotTypes.h"
#include <string>

namespace Trovio::Nodes {

/// The names of the slot value types that `takes` returns true for, as choices of a setting: "Float|Vec3f".
template <class Takes>
std::string typeChoices(Takes takes)
{
    std::string names;
    forEachSlotType([&]<class T>(TypeTag<T> type) {
        if (takes(type))
            names += (names.empty() ? "" : "|") + TypeName<T>::getName();
    });
    return names;
}

} // namespace Trovio::Nodes
