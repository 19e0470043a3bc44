#include "trovio/Values.h"

namespace Trovio {

#define TROVIO_COMPILE_POOL(type, name)                                                                                \
    template class RefCtr<type>;                                                                                       \
    template class Cache<type>;                                                                                        \
    template class SmartPtr<type>;
TROVIO_POOLED_TYPES(TROVIO_COMPILE_POOL)

} // namespace Trovio
