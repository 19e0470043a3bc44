#pragma once

namespace Trovio {

/// A point in time: wall-clock seconds since 1970-01-01 UTC. Zero where nothing has happened yet.
class Time {
public:
    constexpr Time() = default;
    constexpr explicit Time(double seconds) : _seconds(seconds) {}

    /// From the system's real-time clock, which steps when somebody sets it; while a Stepper is active, its date.
    static Time getCurrentTime();

    constexpr double getSeconds() const { return _seconds; }
    constexpr bool operator==(const Time&) const = default;

private:
    double _seconds = 0.0;
};

/// The year 10000, in seconds since 1970: the first time that has no date of four digits.
constexpr double endOfDates = 253402300800.0;

} // namespace Trovio
