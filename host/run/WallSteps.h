#pragma once

#include <cmath>
#include <optional>

namespace Host {

/// Finds out when somebody set the date: then the wall clock moved by more than the time that passed.
class WallSteps {
public:
    /// Less, in seconds, is a clock that is being adjusted slowly.
    static constexpr double Least = 0.5;

    /// How far the wall clock was set since the last look, in seconds; 0 nearly always.
    double look(double wall, double steady)
    {
        const double offset = wall - steady, step = _offset ? offset - *_offset : 0;
        _offset = offset;
        return std::abs(step) < Least ? 0 : step;
    }

private:
    std::optional<double> _offset;
};
} // namespace Host
