#pragma once

#include "explain/Say.h"
#include "host/calibrate/Hold.h"
#include "host/calibrate/PointFile.h"
#include "host/show/KeyPresses.h"

#include <optional>

namespace Host {

/// Takes somebody with a device from point to point, and keeps what the device says at each.
/// Threads: one. Time is handed in, in seconds of a steady clock.
class Guide {
public:
    /// `still`: how far values may be from their median within a second, in their unit. `hint`: where to look if no
    /// value comes. Says the first point.
    Guide(std::vector<KnownPoint> points, double still, std::string hint, Explain::Say say);

    /// Enter measures, s skips a point, b goes back to the one before, q and Escape give up. While it measures only
    /// the last one counts.
    void press(const KeyPress& press, double now);
    /// After each frame; `value` is the device's, if it said one.
    void frame(double now, const std::optional<Point>& value);

    bool isOver() const { return _gaveUp || _at == _points.size(); }
    bool gaveUp() const { return _gaveUp; }

    struct Measured {
        KnownPoint _point;
        Point _value;
    };
    /// The points that were not skipped, in their order.
    std::vector<Measured> measured() const;

private:
    void ask();
    void skip();
    void goBack();
    void endHold();

    const std::vector<KnownPoint> _points;
    const double _still;
    const std::string _hint;
    const Explain::Say _say;
    std::vector<std::optional<Point>> _values; // of each point
    std::size_t _at = 0;
    std::optional<Hold> _hold;
    bool _gaveUp = false;
};

/// "0.5 1.25 -3": with as many digits as a hand can place.
std::string pointText(const Point& point);
} // namespace Host
