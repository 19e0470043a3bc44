#pragma once

#include "trovio/TypeName.h"
#include <cstddef>
#include <iterator>
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

/// The place of the slot value type of that name among the 40; 40 if there is none.
inline std::size_t slotTypeIndex(std::string_view name)
{
#define TROVIO_NAME_OF(type, name) TypeName<type>::getName,
    static constexpr std::string (*names[])() = {TROVIO_SLOT_TYPES(TROVIO_NAME_OF)};
#undef TROVIO_NAME_OF
    std::size_t index = 0;
    while (index < std::size(names) && names[index]() != name)
        ++index;
    return index;
}

/// Calls visit(TypeTag<T>()) for the slot value type of that name. False, and no call, if there is none.
template <class Visit>
bool withSlotType(std::string_view name, Visit&& visit)
{
    const std::size_t wanted = slotTypeIndex(name);
    std::size_t index = 0;
    forEachSlotType([&](auto tag) {
        if (index++ == wanted)
            visit(tag);
    });
    return wanted < index;
}

} // namespace Trovio
