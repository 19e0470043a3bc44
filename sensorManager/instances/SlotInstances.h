#pragma once

#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

/// Compiles the slots of one value type. ROW of the lists of types.
#define TROVIO_COMPILE_SLOTS(type, name)                                                                               \
    template class Data<type>;                                                                                         \
    template class InSlot<type>;                                                                                       \
    template class BufferedInSlot<type>;                                                                               \
    template class OutSlot<type>;                                                                                      \
    template class Wiring<type>;
