#include "scene/run/SensorWatch.h"

#include "trovio/BasicInSlot.h"

#include <algorithm>

namespace Scenes {

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
    const double given = _stamp.value_or(0);
    const double stamp = given + _stepsSinceChange;
    const bool tellsAge = given > 0 && stamp <= now;
    return _changes == 0 ? -1 : std::max(now - (tellsAge ? stamp : _lastChange), 0.0);
}

void SensorWatch::addSlot(Trovio::Slot& slot)
{
    _slots.push_back(&slot);
    if (const auto* in = dynamic_cast<const Trovio::BasicInSlot*>(&slot))
        _sources.push_back({in, in->getCounts().taken});
}

void SensorWatch::removeSlot(const Trovio::Slot& slot)
{
    const auto* const in = dynamic_cast<const Trovio::BasicInSlot*>(&slot);
    std::erase(_slots, &slot);
    std::erase_if(_sources, [in](const Source& source) { return source._slot == in; });
}

// The scene takes one record for each change, so the slot whose count grew is where this one came from.
std::optional<double> SensorWatch::takenStamp()
{
    std::optional<double> stamp;
    for (Source& source : _sources) {
        const Trovio::InSlotActivity activity = source._slot->getActivity();
        if (activity._counts.taken == source._taken)
            continue;
        source._taken = activity._counts.taken;
        stamp = activity._lastTaken.getSeconds();
    }
    return stamp;
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
    _stamp = takenStamp();
    _stepsSinceChange = 0;
    if (_listener != nullptr)
        _listener->changed(*this, time);
}
} // namespace Scenes
