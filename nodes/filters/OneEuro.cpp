#include "nodes/filters/OneEuro.h"

#include "nodes/filters/FilterLane.h"
#include <numbers>

namespace Trovio::Nodes {

namespace {

constexpr double shortestStep = 1e-9; // seconds between two records; less is no progress of time

/// Cut-off frequencies, and what they make of the time between two records.
class OneEuroTuning {
public:
    explicit OneEuroTuning(const Settings& settings)
        : _cutoff(settings.number("cutoff")), _beta(settings.number("beta")), _derivative(settings.number("derivative"))
    {
    }

    /// The share that a new value, or a new speed, has in the filtered one; elapsed in seconds.
    double valueShare(double speed, double elapsed) const { return share(_cutoff + _beta * speed, elapsed); }
    double speedShare(double elapsed) const { return share(_derivative, elapsed); }

private:
    static double share(double cutoff, double elapsed)
    {
        return 1.0 / (1.0 + 1.0 / (2.0 * std::numbers::pi * cutoff * elapsed));
    }

    double _cutoff;     // hertz, of a signal at rest
    double _beta;       // hertz for each unit a second
    double _derivative; // hertz, of the speed
};

/// One number that changes in time.
struct OneEuroChannel {
    double _raw = 0.0;
    double _value = 0.0; // filtered
    double _speed = 0.0; // filtered, units a second

    double advance(double x, double elapsed, const OneEuroTuning& tuning)
    {
        const double speed = _speed + tuning.speedShare(elapsed) * ((x - _raw) / elapsed - _speed);
        const double value = _value + tuning.valueShare(std::abs(speed), elapsed) * (x - _value);
        // A leap that no number can express is a new beginning.
        *this = std::isfinite(speed) && std::isfinite(value) ? OneEuroChannel{x, value, speed} : OneEuroChannel{x, x};
        return _value;
    }
};

/// Each component is filtered on its own.
template <class E>
class OneEuroSignal {
public:
    void start(const E& element)
    {
        for (std::size_t i = 0; i < _channels.size(); ++i)
            _channels[i]._value = static_cast<double>(Components<E>::get(element, i));
        setRaw(element);
    }

    void setRaw(const E& element)
    {
        for (std::size_t i = 0; i < _channels.size(); ++i)
            _channels[i]._raw = static_cast<double>(Components<E>::get(element, i));
    }

    Outcome advance(E& element, double elapsed, const OneEuroTuning& tuning)
    {
        return changeComponents(element,
                                [&](std::size_t i, double x) { return _channels[i].advance(x, elapsed, tuning); });
    }

private:
    std::array<OneEuroChannel, Components<E>::Count> _channels;
};

/// The speed is that of turning, about any axis; the filtered rotation moves along the arc to the new one.
template <>
class OneEuroSignal<Rotation> {
public:
    void start(Rotation& rotation)
    {
        setRaw(rotation);
        _value = _raw;
        rotation = _value.toRotation();
    }

    void setRaw(const Rotation& rotation) { _raw = Quaternion(rotation).normalized(); }

    Outcome advance(Rotation& rotation, double elapsed, const OneEuroTuning& tuning)
    {
        const Quaternion before = _raw;
        setRaw(rotation);
        const auto turn = before.rotationTo(_raw);
        for (std::size_t i = 0; i < turn.size(); ++i)
            _speed[i] += tuning.speedShare(elapsed) * (turn[i] / elapsed - _speed[i]);
        const double speed = std::hypot(_speed[0], _speed[1], _speed[2]);
        _value = _value.slerp(_raw, tuning.valueShare(speed, elapsed));
        rotation = _value.toRotation();
        return Outcome::Sent;
    }

private:
    Quaternion _raw, _value;
    std::array<double, 3> _speed{}; // filtered, radians a second about each axis
};

template <class E>
class OneEuroFormula {
public:
    struct State {
        OneEuroSignal<E> _signal;
        double _stamp = std::numeric_limits<double>::quiet_NaN(); // of the newest record, in seconds
    };
    explicit OneEuroFormula(const Settings& settings) : _tuning(settings) {}

    Outcome operator()(E& element, State& state, double stamp) const
    {
        if (!std::isfinite(stamp))
            return Outcome::BadStamp;
        const double elapsed = stamp - state._stamp;
        if (elapsed >= 0.0 && elapsed < shortestStep)
            return Outcome::BadStamp; // a repeat leaves the filter as it was
        state._stamp = stamp;
        if (std::isnan(elapsed)) {
            state._signal.start(element);
            return Outcome::Sent;
        }
        if (elapsed >= shortestStep)
            return state._signal.advance(element, elapsed, _tuning);
        // The source's clock may have been set back: what comes next is measured from here.
        state._signal.setRaw(element);
        return Outcome::BadStamp;
    }

private:
    OneEuroTuning _tuning;
};

struct OneEuroFilter {
    template <class E>
    requires(Measure<E> || std::is_same_v<E, Rotation>) using Formula = OneEuroFormula<E>;
};

} // namespace

OneEuro::OneEuro(Clock& clock) : FilterNode(clock, createFilterLane<OneEuroFilter>) {}

const NodeTypeEntry& OneEuro::getEntry()
{
    static const RelayTable table(
        fittingTypes<OneEuroFilter>(), "Float",
        {Setting::number("cutoff", "1", 1e-6, 1e6, "cut-off frequency at rest in hertz; less takes away more jitter"),
         Setting::number("beta", "0", 0, 1e9,
                         "hertz that the cut-off rises for each unit a second (radian a second for rotations); more "
                         "takes away more lag"),
         Setting::number("derivative", "1", 1e-6, 1e6, "cut-off frequency of the speed in hertz")});
    static const NodeTypeEntry entry{"OneEuro", "smooths signals at rest and follows them when they move", table.rows(),
                                     createOnSystemClock<OneEuro>};
    return entry;
}

} // namespace Trovio::Nodes
