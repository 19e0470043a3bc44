#include "trovio/Instances.h"

namespace Trovio {

#define TROVIO_COMPILE_POOL(type, name) TROVIO_INSTANTIATE_POOL(template, std::vector<type>)
TROVIO_INSTANTIATE_POOL(template, Image)
TROVIO_ELEMENTS(TROVIO_COMPILE_POOL)

} // namespace Trovio
