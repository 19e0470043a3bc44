#include "trovio/TypeName.h"

namespace Trovio {

#define TROVIO_DEFINE_NAME(type, name)                                                                                 \
    std::string TypeName<type>::getName()                                                                              \
    {                                                                                                                  \
        return name;                                                                                                   \
    }
TROVIO_SLOT_TYPES(TROVIO_DEFINE_NAME)

} // namespace Trovio
