#include "ostrel/Rotation.h"

#include <cmath>

namespace Ostrel {

namespace {

constexpr float shortest = 1e-6F; // a vector up to this length has no direction

float length(float x, float y, float z)
{
    return std::sqrt(x * x + y * y + z * z);
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
    const float size = length(x, y, z);
    if (!(size > shortest)) {
        _quaternion = {0.0F, 0.0F, 0.0F, 1.0F};
        return;
    }
    const float s = std::sin(_angle / 2.0F);
    _quaternion = {x * s / size, y * s / size, z * s / size, std::cos(_angle / 2.0F)};
}

void Rotation::updateAxisAngle() const
{
    if (_mark != AxisAngleStale)
        return;
    _mark = BothValid;
    const auto [x, y, z, w] = _quaternion;
    const float size = length(x, y, z);
    if (!(size > shortest)) {
        _axis = {0.0F, 0.0F, 1.0F};
        _angle = 0.0F;
        return;
    }
    _axis = {x / size, y / size, z / size};
    _angle = 2.0F * std::atan2(size, w);
}

} // namespace Ostrel
