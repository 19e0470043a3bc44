#include "sensorManager/instances/SlotInstances.h"

namespace Trovio {

TROVIO_SHARED_TYPES(TROVIO_COMPILE_SLOTS)

} // namespace Trovio
