#include "sensorManager/instances/SlotInstances.h"

namespace Trovio {

TROVIO_PLAIN_TYPES(TROVIO_COMPILE_SLOTS)

} // namespace Trovio
