#include "host/SensorWatch.h"

#include "trovio/BasicInSlot.h"

#include <algorithm>

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

double SensorWatch::age(double now) const
{
    double stamp = 0;
    for (const Trovio::Slot* slot : _slots)
        if (const auto* in = dynamic_cast<const Trovio::BasicInSlot*>(slot))
            stamp = std::max(stamp, in->getActivity()._lastTaken.getSeconds());
    stamp += stamp > 0 ? _stepsSinceChange : 0;
    const bool tellsAge = stamp > 0 && stamp <= now;
    return _changes == 0 ? -1 : std::max(now - (tellsAge ? stamp : _lastChange), 0.0);
}

void SensorWatch::clockStepped(double seconds)
{
    _firstChange += seconds;
    _lastChange += seconds;
    _stepsSinceChange += seconds;
}

void SensorWatch::notify(const Ostrel::TimeStamp& time, Ostrel::BaseObject*, Ostrel::BaseObject*, Ostrel::BaseObject*)
{
    if (_changes++ == 0)
        _firstChange = time;
    _lastChange = time;
    _stepsSinceChange = 0;
    if (_listener != nullptr)
        _listener->changed(*this, time);
}
} // namespace Host
