#pragma once

#include "trovio/SlotTypeList.h"

namespace Trovio {

/// The name of a slot value type as settings, messages and tools show it: "Vec3f", and "Vec3f[]" for a shared vector.
template <class T>
struct TypeName;

#define TROVIO_DECLARE_NAME(type, name)                                                                                \
    template <>                                                                                                        \
    struct TypeName<type> {                                                                                            \
        static std::string getName();                                                                                  \
    };
TROVIO_SLOT_TYPES(TROVIO_DECLARE_NAME)
#undef TROVIO_DECLARE_NAME

} // namespace Trovio
