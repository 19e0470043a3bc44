#include "trovio/Instances.h"

namespace Trovio {

#define TROVIO_COMPILE_SHARED(type, name) TROVIO_INSTANTIATE_SLOTS(template, SmartPtr<std::vector<type>>)
TROVIO_INSTANTIATE_SLOTS(template, SmartPtr<Image>)
TROVIO_ELEMENTS(TROVIO_COMPILE_SHARED)

} // namespace Trovio
