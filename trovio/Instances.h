#pragma once

#include "trovio/BufferedInSlot.h"
#include "trovio/Values.h"
#include "trovio/Wiring.h"

// The templates are compiled once, in the library, for every slot value type. A program that compiles them over other
// platform headers defines TROVIO_OWN_INSTANCES.
#ifndef TROVIO_OWN_INSTANCES

/// PREFIX is `extern template` here and `template` where they are compiled.
#define TROVIO_INSTANTIATE_SLOTS(PREFIX, ...)                                                                          \
    PREFIX class Data<__VA_ARGS__>;                                                                                    \
    PREFIX class InSlot<__VA_ARGS__>;                                                                                  \
    PREFIX class BufferedInSlot<__VA_ARGS__>;                                                                          \
    PREFIX class OutSlot<__VA_ARGS__>;                                                                                 \
    PREFIX class Wiring<__VA_ARGS__>;

#define TROVIO_INSTANTIATE_POOL(PREFIX, ...)                                                                           \
    PREFIX class RefCtr<__VA_ARGS__>;                                                                                  \
    PREFIX class Cache<__VA_ARGS__>;                                                                                   \
    PREFIX class SmartPtr<__VA_ARGS__>;

namespace Trovio {

#define TROVIO_EXTERN_PLAIN(type, name) TROVIO_INSTANTIATE_SLOTS(extern template, type)
#define TROVIO_EXTERN_SHARED(type, name)                                                                               \
    TROVIO_INSTANTIATE_POOL(extern template, std::vector<type>)                                                        \
    TROVIO_INSTANTIATE_SLOTS(extern template, SmartPtr<std::vector<type>>)

TROVIO_PLAIN_ELEMENTS(TROVIO_EXTERN_PLAIN)
TROVIO_INSTANTIATE_POOL(extern template, Image)
TROVIO_INSTANTIATE_SLOTS(extern template, SmartPtr<Image>)
TROVIO_ELEMENTS(TROVIO_EXTERN_SHARED)

#undef TROVIO_EXTERN_SHARED
#undef TROVIO_EXTERN_PLAIN

} // namespace Trovio

#endif
