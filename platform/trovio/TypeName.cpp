#include "trovio/TypeName.h"

namespace Trovio {

#define TROVIO_DEFINE_NAME(type, name)                                                                                 \
    std::string TypeName<type>::getName()                                                                              \
    {                                                                                                                  \
        return name;                                                                                                   \
    }
#define TROVIO_DEFINE_VECTOR_NAME(type, name) TROVIO_DEFINE_NAME(SmartPtr<std::vector<type>>, name "[]")

TROVIO_PLAIN_ELEMENTS(TROVIO_DEFINE_NAME)
TROVIO_DEFINE_NAME(SmartPtr<Image>, "Image")
TROVIO_ELEMENTS(TROVIO_DEFINE_VECTOR_NAME)

} // namespace Trovio
