#pragma once

#include "trovio/TypeName.h"
#include <string_view>

namespace Trovio {

/// Names a type where a value of it would be in the way.
template <class T>
struct TypeTag {
    using Type = T;
};

/// Calls visit(TypeTag<T>()) for each of the 40 slot value types.
template <class Visit>
constexpr void forEachSlotType(Visit&& visit)
{
#define TROVIO_VISIT(type, name) visit(TypeTag<type>());
    TROVIO_SLOT_TYPES(TROVIO_VISIT)
#undef TROVIO_VISIT
}

/// Calls visit(TypeTag<T>()) for the slot value type of that name. False, and no call, if there is none.
template <class Visit>
bool withSlotType(std::string_view name, Visit&& visit)
{
    bool found = false;
    forEachSlotType([&]<class T>(TypeTag<T> tag) {
        if (!found && TypeName<T>::getName() == name) {
            found = true;
            visit(tag);
        }
    });
    return found;
}

} // namespace Trovio
