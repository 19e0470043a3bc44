#pragma once

#include "ostrel/Context.h"
#include "ostrel/DirectSensor.h"
#include "ostrel/FieldClass.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorHandlerType.h"
#include "sensorManager/SensorManager.h"
#include "tests/support/LogCapture.h"
#include <memory>
#include <string>

using namespace Ostrel;

/// A sensor that stands in no scene: whoever holds it gives it its context.
inline std::unique_ptr<DirectSensor> makeSensor(std::string_view fieldType, const std::string& label,
                                                bool output = false, unsigned bufferSize = 0)
{
    auto sensor = std::make_unique<DirectSensor>(FieldClass::find(fieldType)->create());
    sensor->setName(label);
    sensor->setLabel(label);
    sensor->setDescription(label + " description");
    sensor->setOutput(output);
    sensor->setBufferSize(bufferSize);
    return sensor;
}

inline Merid::URL someURL()
{
    return Merid::URL("file:.");
}

/// Calls through the interface that takes plain references.
inline void addParameter(SensorHandler& handler, std::string name, std::string value)
{
    handler.addParameter(name, value);
}
inline void addLabel(SensorHandler& handler, std::string first, std::string second)
{
    handler.addLabel(first, second);
}
