#include "host/SensorWatch.h"

namespace Host {

SensorWatch::SensorWatch(Ostrel::DirectSensor& sensor, std::string scene)
    : Observer("watch"), _sensor(sensor), _scene(std::move(scene))
{
    field().getSendSubject().attach(*this);
}

std::string SensorWatch::title() const
{
    return _scene.empty() ? _sensor.getName() : _scene + ": " + _sensor.getName();
}

void SensorWatch::notify(const Ostrel::TimeStamp& time, Ostrel::BaseObject*, Ostrel::BaseObject*, Ostrel::BaseObject*)
{
    ++_changes;
    _lastChange = time;
    if (_listener != nullptr)
        _listener->changed(*this, time);
}
} // namespace Host
