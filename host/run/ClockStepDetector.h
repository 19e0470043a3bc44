#pragma once

#include <cmath>
#include <optional>

namespace Host {

/// Finds out when somebody set the date: then the wall clock moved by more than the time that passed.
class ClockStepDetector {
public:
    /// Less, in seconds, is a clock that is being adjusted slowly.
    static constexpr double minStep = 0.5;

    /// How far the wall clock was set since the last update, in seconds; 0 nearly always.
    double update(double wall, double steady)
    {
        const double offset = wall - steady, step = _offset ? offset - *_offset : 0;
        _offset = offset;
        return std::abs(step) < minStep ? 0 : step;
    }

private:
    std::optional<double> _offset;
};
} // namespace Host
