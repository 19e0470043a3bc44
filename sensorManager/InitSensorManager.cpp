#include "sensorManager/ORDANSensorHandler.h"
#include "sensorManager/OTSensorHandler.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorHandlerType.h"
#include "sensorManager/TORVASensorHandler.h"
#include "sensorManager/TrovioSensorHandler.h"

namespace Ostrel {

bool initSensorManager()
{
    ORDANSensorHandler::init();
    TrovioSensorHandler::init();
    OTSensorHandler::init();
    SensorHandler::init();
    return TORVASensorHandler::init();
}

} // namespace Ostrel
