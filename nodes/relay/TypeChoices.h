#pragma once

#include "trovio/SlotTypes.h"
#include <string>

namespace Trovio::Nodes {

/// Adds the name to choices of a setting.
void addChoice(std::string& choices, const std::string& name);

/// The names of the slot value types that `takes` returns true for, as choices of a setting: "Float|Vec3f".
template <class Takes>
std::string typeChoices(Takes takes)
{
    std::string names;
    forEachSlotType([&]<class T>(TypeTag<T> type) {
        if (takes(type))
            addChoice(names, TypeName<T>::getName());
    });
    return names;
}

} // namespace Trovio::Nodes
