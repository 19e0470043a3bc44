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

double SensorWatch::rate() const
{
    const double passed = _lastChange - _firstChange;
    return passed > 0 ? static_cast<double>(_changes - 1) / passed : 0;
}

void SensorWatch::notify(const Ostrel::TimeStamp& time, Ostrel::BaseObject*, Ostrel::BaseObject*, Ostrel::BaseObject*)
{
    if (_changes++ == 0)
        _firstChange = time;
    _lastChange = time;
    if (_listener != nullptr)
        _listener->changed(*this, time);
}
} // namespace Host
