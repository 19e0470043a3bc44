#pragma once

#include "trovio/Components.h"
#include "trovio/Settings.h"
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace Trovio::Nodes {

enum class Shape { Sine, Ramp, Square, Steps, Noise }; // in the order of the setting's choices

/// The number of one record of a generator, and the time that belongs to it.
struct Tick {
    std::uint64_t _index = 0;
    double _seconds = 0.0; // since the start, index / rate
};

/// One number for each tick and component: offset + amplitude * shape.
/// A plain value; the same settings give the same numbers, on every machine for all shapes but the sine.
class Wave {
public:
    /// Reads the settings for a value of that many components. Throws InvalidFieldException.
    Wave(const Settings& settings, std::size_t components);

    /// shift is added to the phase, in periods.
    double value(const Tick& tick, std::size_t component, double shift) const;

private:
    struct Channel {
        double _amplitude, _offset, _phase;
    };

    double shapeAt(double position, const Tick& tick, std::size_t component, double shift) const;
    double noise(const Tick& tick, std::size_t component, double shift) const;

    Shape _shape;
    double _frequency;
    double _steps;
    std::uint64_t _seed;
    std::vector<Channel> _channels; // one for each component
};

template <class C>
C toComponent(double number)
{
    if constexpr (std::is_same_v<C, bool>)
        return number > 0.0;
    else if constexpr (std::is_integral_v<C>) {
        static_assert(sizeof(C) >= sizeof(long long),
                      "settings allow numbers that a whole number of less than 64 bits does not hold");
        return static_cast<C>(std::llround(number));
    } else
        return static_cast<C>(number);
}

inline void normalize(Rotation& rotation)
{
    double squares = 0.0;
    for (std::size_t i = 0; i < Rotation::size(); ++i)
        squares += double(rotation[i]) * rotation[i];
    if (squares == 0.0)
        rotation = Rotation();
    else
        for (std::size_t i = 0; i < Rotation::size(); ++i)
            rotation[i] = static_cast<float>(rotation[i] / std::sqrt(squares));
}

/// Fills any numeric value from a wave. A rotation is brought to length 1.
template <Numeric E>
E waveValue(const Wave& wave, const Tick& tick, double shift)
{
    using Access = Components<E>;
    E value{};
    for (std::size_t i = 0; i < Access::Count; ++i)
        Access::set(value, i, toComponent<typename Access::Component>(wave.value(tick, i, shift)));
    if constexpr (std::is_same_v<E, Rotation>)
        normalize(value);
    return value;
}

} // namespace Trovio::Nodes
