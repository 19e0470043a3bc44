#include "nodes/generator/Wave.h"

#include "nodes/shared/NumberList.h"
#include <numbers>

namespace Trovio::Nodes {

namespace {

/// Scatters the bits of a number so that neighbours have nothing in common.
/// Source: the finaliser of splitmix64, public domain, https://prng.di.unimi.it/splitmix64.c
std::uint64_t scatter(std::uint64_t bits)
{
    bits += 0x9e3779b97f4a7c15U;
    bits = (bits ^ (bits >> 30U)) * 0xbf58476d1ce4e5b9U;
    bits = (bits ^ (bits >> 27U)) * 0x94d049bb133111ebU;
    return bits ^ (bits >> 31U);
}

} // namespace

Wave::Wave(const Settings& settings, std::size_t components)
    : _shape(static_cast<Shape>(settings.choice("shape"))),
      _frequency(settings.number("frequency")),
      _steps(static_cast<double>(settings.integer("steps"))),
      _seed(static_cast<std::uint64_t>(settings.integer("seed")))
{
    const auto amplitudes = readComponents(settings, "amplitude", components);
    const auto offsets = readComponents(settings, "offset", components);
    const auto phases = readComponents(settings, "phase", components);
    for (std::size_t i = 0; i < components; ++i)
        _channels.push_back({amplitudes[i], offsets[i], phases[i]});
}

double Wave::value(const Tick& tick, std::size_t component, double shift) const
{
    const Channel& channel = _channels[component];
    const double periods = _frequency * tick._seconds + channel._phase + shift;
    return channel._offset + channel._amplitude * shapeAt(periods - std::floor(periods), tick, component, shift);
}

double Wave::shapeAt(double position, const Tick& tick, std::size_t component, double shift) const
{
    switch (_shape) {
    case Shape::Sine:
        return std::sin(2.0 * std::numbers::pi * position);
    case Shape::Ramp:
        return 2.0 * position - 1.0;
    case Shape::Square:
        return position < 0.5 ? 1.0 : -1.0;
    case Shape::Steps:
        return 2.0 * std::min(std::floor(position * _steps), _steps - 1.0) / (_steps - 1.0) - 1.0;
    case Shape::Noise:
        break;
    }
    return noise(tick, component, shift);
}

double Wave::noise(const Tick& tick, std::size_t component, double shift) const
{
    // 53 bits fill a double; the shift tells the elements of one array apart.
    const auto element = static_cast<std::uint64_t>(shift * 0x1p40);
    const std::uint64_t bits = scatter(scatter(scatter(_seed) ^ tick._index) ^ (element + component));
    return static_cast<double>(bits >> 11U) * 0x1p-52 - 1.0;
}

} // namespace Trovio::Nodes
