#include "sensorManager/SensorHandler.h"

#include "ostrel/DirectSensor.h"
#include "ostrel/DirectSensorProc.h"
#include <memory>

namespace Ostrel {

SensorHandler::SensorHandler(const std::string& name) : _name(name) {}

SensorHandler::SensorHandler(SensorHandler&) : BaseObject() {}

SensorHandler::~SensorHandler()
{
    deleteObservers();
}

void SensorHandler::deleteObservers()
{
    for (const auto& [sensor, observer] : _observers)
        delete observer;
    _observers.clear();
}

void SensorHandler::regDISensor(DirectSensor* sensor)
{
    if (!sensor || _observers.contains(sensor))
        return;
    DirectSensorProc* const proc = sensor->getDirectSensorProc();
    std::unique_ptr<UpdateObserver> observer(sensor->isOutput() ? createOutputUpdateObserver(sensor)
                                                                : createUpdateObserver(sensor));
    if (!observer)
        return;
    observer->_link = nullptr;
    observer->_sensor = sensor;
    observer->_field = proc->getField();
    proc->getUpdateSubject().attach(*observer);
    // Sensors come mostly in the order of their addresses. No hint from before the factory, which may unregister
    // others.
    if (_observers.emplace_hint(_observers.end(), sensor, observer.get())->second == observer.get())
        static_cast<void>(observer.release()); // the entry owns it now
}

void SensorHandler::unregDISensor(DirectSensor* sensor)
{
    const auto found = _observers.find(sensor);
    if (!sensor || found == _observers.end())
        return;
    delete found->second;
    _observers.erase(found);
}

SensorHandler::UpdateObserver* SensorHandler::createUpdateObserver(DirectSensor*)
{
    return nullptr;
}

SensorHandler::UpdateObserver* SensorHandler::createOutputUpdateObserver(DirectSensor*)
{
    return nullptr;
}

bool SensorHandler::update(const TimeStamp&)
{
    return false;
}

bool SensorHandler::init()
{
    return true;
}

void SensorHandler::UpdateObserver::notify(const TimeStamp& now, BaseObject*, BaseObject*, BaseObject*)
{
    if (_sensor->isOutput())
        updateOutput(now);
    else
        update(now);
}

// Not inlined: notify() would ask for each sensor whether it is this one that it calls.
[[gnu::noinline]] bool SensorHandler::UpdateObserver::update(const TimeStamp&)
{
    return false;
}

[[gnu::noinline]] void SensorHandler::UpdateObserver::updateOutput(const TimeStamp&) {}

} // namespace Ostrel
