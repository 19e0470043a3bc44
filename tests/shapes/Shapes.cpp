// All classes whose shape is fixed, for the compiler to tell how it lays them out. Never runs.
#include "sensorManager/ORDANSensorHandler.h"
#include "sensorManager/OTSensorHandler.h"
#include "sensorManager/SensorManager.h"
#include "sensorManager/TORVASensorHandler.h"
#include "sensorManager/TrovioUpdateObserver.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"
#include "trovio/Values.h"
