#pragma once

#include "scene/run/FrameClock.h"

#include <array>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>

namespace Host {

/// How far from their time records came, in classes of 5 %.
class ArrivalErrors {
public:
    void add(double seconds);
    std::uint64_t count() const { return _count; }
    /// Seconds that so large a share of them stayed below; 0 without any.
    double quantile(double share) const;

private:
    static constexpr double finest = 1e-6, step = 1.05; // seconds; from class to class
    std::array<std::uint64_t, 400> _classes{};          // up to 294 s
    std::uint64_t _count = 0;
};

/// When the moments of a recording are due: its speed, and whether it is paused. Positions are seconds from the start
/// of the recording. Ownership: refers to the clock. Threads:   one.
class ReplayPace {
public:
    static constexpr double Slowest = 1.0 / 1024, Fastest = 1024;

    /// An infinite speed is as fast as possible.
    ReplayPace(Scenes::FrameClock& clock, double speed);

    /// That position is due now.
    void startAt(double position);
    /// Blocks until that position is due. Calls `look` at once and every 50 ms meanwhile, which may call what stands
    /// below. False where the clock says stop.
    bool waitFor(double position, const std::function<void()>& look);
    /// A frame was run there.
    void endFrame();
    /// Seconds by which the last position that was waited for came late; nothing where it was not due by the clock.
    const ArrivalErrors& errors() const { return _errors; }
    /// Counts the moment that was waited for last as the arrival of a record.
    void noteArrival();

    bool isPaused() const { return _isPaused; }
    void pause();
    void goOn();
    void switchPause() { _isPaused ? goOn() : pause(); }
    /// Pauses behind the next frame.
    void goToNextFrame();
    /// Twice or half as fast.
    void faster() { setSpeed(_speed * 2); }
    void slower() { setSpeed(_speed / 2); }

    /// "paused at 1.250 s of 3.000 s, speed 2"
    std::string text(double length) const;

private:
    bool isTimed() const;
    double positionNow() const;
    double due(double position) const { return _anchor + (position - _anchorPosition) / _speed; }
    void setSpeed(double speed);
    void anchor();

    Scenes::FrameClock& _clock;
    double _speed;
    bool _isPaused = false, _isForOneFrame = false;
    double _anchor = std::numeric_limits<double>::infinity(); // when _anchorPosition was due; at first no time passes
    double _anchorPosition = 0;
    double _position = 0; // that was reached last, or where it was paused
    double _late = 0;     // seconds
    ArrivalErrors _errors;
};
} // namespace Host
