#pragma once

#include "trovio/SlotTypeList.h"
#include "trovio/Values.h"
#include "trovio/Wiring.h"

// The templates are compiled once, in the library, for every slot value type. A program that compiles them over other
// platform headers defines TROVIO_OWN_INSTANCES.
#ifndef TROVIO_OWN_INSTANCES

namespace Trovio {

#define TROVIO_EXTERN_POOL(type, name)                                                                                 \
    extern template class RefCtr<type>;                                                                                \
    extern template class Cache<type>;                                                                                 \
    extern template class SmartPtr<type>;
TROVIO_POOLED_TYPES(TROVIO_EXTERN_POOL)
#undef TROVIO_EXTERN_POOL

#define TROVIO_EXTERN_SLOTS(type, name)                                                                                \
    extern template class Data<type>;                                                                                  \
    extern template class InSlot<type>;                                                                                \
    extern template class OutSlot<type>;                                                                               \
    extern template class Wiring<type>;
TROVIO_SLOT_TYPES(TROVIO_EXTERN_SLOTS)
#undef TROVIO_EXTERN_SLOTS

} // namespace Trovio

#endif
