#include "host/replay/ReplayPace.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace Host {

namespace {

constexpr double lookInterval = 0.05; // seconds
}

void ArrivalErrors::add(double seconds)
{
    const double position = std::log(std::max(std::abs(seconds), finest) / finest) / std::log(step);
    ++_classes[std::min(static_cast<std::size_t>(position), _classes.size() - 1)];
    ++_count;
}

double ArrivalErrors::quantile(double share) const
{
    std::uint64_t below = 0;
    for (std::size_t i = 0; i < _classes.size(); ++i) {
        below += _classes[i];
        if (below > 0 && static_cast<double>(below) >= share * static_cast<double>(_count))
            return finest * std::pow(step, static_cast<double>(i + 1));
    }
    return 0;
}

ReplayPace::ReplayPace(Scenes::FrameClock& clock, double speed) : _clock(clock), _speed(speed) {}

bool ReplayPace::isTimed() const
{
    return std::isfinite(_speed) && !_isForOneFrame;
}

void ReplayPace::startAt(double position)
{
    _position = position;
    anchor();
}

bool ReplayPace::waitFor(double position, const std::function<void()>& look)
{
    for (;;) {
        look();
        const double now = _clock.steady();
        const bool isDue = !_isPaused && (!isTimed() || due(position) <= now);
        if (isDue) {
            _late = isTimed() ? now - due(position) : 0;
            _position = position;
            return _clock.waitUntil(now);
        }
        const double next = now + lookInterval;
        if (!_clock.waitUntil(_isPaused ? next : std::min(next, due(position))))
            return false;
    }
}

void ReplayPace::noteArrival()
{
    if (isTimed())
        _errors.add(_late);
}

void ReplayPace::endFrame()
{
    _isPaused = _isPaused || _isForOneFrame; // right there, whatever the clock says
    _isForOneFrame = false;
}

double ReplayPace::positionNow() const
{
    const double byClock = _anchorPosition + (_clock.steady() - _anchor) * _speed;
    return _isPaused || !isTimed() ? _position : std::max(_position, byClock);
}

void ReplayPace::pause()
{
    _position = positionNow();
    _isPaused = true;
}

void ReplayPace::goOn()
{
    _isPaused = _isForOneFrame = false;
    anchor();
}

void ReplayPace::goToNextFrame()
{
    _isPaused = false;
    _isForOneFrame = true;
}

void ReplayPace::setSpeed(double speed)
{
    _position = positionNow();
    anchor();
    _speed = std::isfinite(speed) ? std::clamp(speed, Slowest, Fastest) : Fastest;
}

void ReplayPace::anchor()
{
    _anchor = _clock.steady();
    _anchorPosition = _position;
}

std::string ReplayPace::text(double length) const
{
    char text[120];
    std::snprintf(text, sizeof text, "%s %.3f s of %.3f s, speed ", _isPaused ? "paused at" : "at", _position, length);
    char speed[32] = "max";
    if (std::isfinite(_speed))
        std::snprintf(speed, sizeof speed, "%g", _speed);
    return std::string(text) + speed;
}
} // namespace Host
