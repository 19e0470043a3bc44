#include "trovio/Instances.h"

namespace Trovio {

#define TROVIO_COMPILE_PLAIN(type, name) TROVIO_INSTANTIATE_SLOTS(template, type)
TROVIO_PLAIN_ELEMENTS(TROVIO_COMPILE_PLAIN)

} // namespace Trovio
