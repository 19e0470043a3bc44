#include "ostrel/DirectSensor.h"

#include <utility>

namespace Ostrel {

const NodeType& DirectSensor::sensorType()
{
    static const auto* const type = new NodeType("DirectSensor");
    return *type;
}

std::uint64_t DirectSensor::_turns = 0;

DirectSensor::DirectSensor() : Node(sensorType()) {}

DirectSensor::DirectSensor(std::unique_ptr<Field> field) : DirectSensor()
{
    setDirectSensorProc(std::make_unique<DirectSensorProc>(std::move(field)));
}

DirectSensor::~DirectSensor()
{
    unregisterSelf();
}

void DirectSensor::setDirectSensorProc(std::unique_ptr<DirectSensorProc> proc)
{
    unregisterSelf();
    _proc = std::move(proc);
    if (Field* const field = getField())
        field->setOwner(this, &DirectSensorProc::valueDescription());
    registerSelf();
}

void DirectSensor::setContext(Context* newContext)
{
    if (newContext == context())
        return;
    unregisterSelf();
    Node::setContext(newContext);
    registerSelf();
}

void DirectSensor::registerSelf()
{
    if (!_proc || !context())
        return;
    // First, so that a sensor whose registration failed halfway is still unregistered.
    _registered = true;
    DirectSensorProc::registerSubject().notify(currentTime(), this);
}

void DirectSensor::unregisterSelf()
{
    if (std::exchange(_registered, false))
        DirectSensorProc::unregisterSubject().notify(currentTime(), this);
}

} // namespace Ostrel
