#include "ostrel/Rotation.h"

#include <cmath>

namespace Ostrel {

namespace {

constexpr double shortest = 1e-6; // a vector up to this length has no direction

// In double, in which no square of a float is too large or too small.
double length(double x, double y, double z)
{
    return std::sqrt(x * x + y * y + z * z);
}

template <class... Numbers>
std::array<float, sizeof...(Numbers)> rounded(Numbers... numbers)
{
    return {static_cast<float>(numbers)...};
}

} // namespace

void Rotation::setAxisAngle(float x, float y, float z, float angle)
{
    _axis = {x, y, z};
    _angle = angle;
    _mark = QuaternionStale;
}

void Rotation::setQuaternion(float x, float y, float z, float w)
{
    _quaternion = {x, y, z, w};
    _mark = AxisAngleStale;
}

const std::array<float, 3>& Rotation::axis() const
{
    updateAxisAngle();
    return _axis;
}

float Rotation::angle() const
{
    updateAxisAngle();
    return _angle;
}

const std::array<float, 4>& Rotation::quaternion() const
{
    updateQuaternion();
    return _quaternion;
}

void Rotation::updateQuaternion() const
{
    if (_mark != QuaternionStale)
        return;
    _mark = BothValid;
    const auto [x, y, z] = _axis;
    const double size = length(x, y, z);
    if (!(size > shortest)) {
        _quaternion = {0.0F, 0.0F, 0.0F, 1.0F};
        return;
    }
    const double half = _angle / 2.0;
    _quaternion =
        rounded(x / size * std::sin(half), y / size * std::sin(half), z / size * std::sin(half), std::cos(half));
}

void Rotation::updateAxisAngle() const
{
    if (_mark != AxisAngleStale)
        return;
    _mark = BothValid;
    const auto [x, y, z, w] = _quaternion;
    const double size = length(x, y, z);
    if (!(size > shortest)) {
        _axis = {0.0F, 0.0F, 1.0F};
        _angle = 0.0F;
        return;
    }
    _axis = rounded(x / size, y / size, z / size);
    _angle = static_cast<float>(2.0 * std::atan2(size, w));
}

} // namespace Ostrel
