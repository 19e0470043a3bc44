#pragma once

#include "host/calibrate/RoomFit.h"

namespace Host {

/// One second of values from a device that is held still. Threads: one.
class Hold {
public:
    static constexpr double Length = 1.0;            // seconds
    static constexpr std::size_t Fewest = 5;         // values that a median is taken of
    static constexpr std::size_t MaxValues = 20'000; // more than two frames a millisecond; others are left out

    /// Begins at `now`, in seconds of a steady clock.
    explicit Hold(double now) : _end(now + Length) {}

    void take(const Point& value);
    bool isOver(double now) const { return now >= _end; }

    std::size_t count() const { return _values.size(); }
    /// Of each coordinate. There is at least one value.
    Point median() const;
    /// How far from the median nine of ten values were, at most.
    double spread() const;

private:
    double _end;
    std::vector<Point> _values;
};
} // namespace Host
