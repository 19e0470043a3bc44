#include "nodes/relay/Quaternion.h"

namespace Trovio::Nodes {

Quaternion Quaternion::about(std::size_t axis, double angle)
{
    std::array<double, 3> vector{};
    vector.at(axis) = std::sin(angle / 2.0);
    return {vector[0], vector[1], vector[2], std::cos(angle / 2.0)};
}

Quaternion Quaternion::operator*(const Quaternion& other) const
{
    return {_w * other._x + _x * other._w + _y * other._z - _z * other._y,
            _w * other._y - _x * other._z + _y * other._w + _z * other._x,
            _w * other._z + _x * other._y - _y * other._x + _z * other._w,
            _w * other._w - _x * other._x - _y * other._y - _z * other._z};
}

std::array<double, 3> Quaternion::rotationTo(const Quaternion& other) const
{
    const Quaternion to = other.nearTo(*this);
    // The vector part of to times the conjugate of this one; its length is the sine of half the angle.
    const std::array<double, 3> vector{
        to._x * _w - to._w * _x - to._y * _z + to._z * _y,
        to._y * _w - to._w * _y - to._z * _x + to._x * _z,
        to._z * _w - to._w * _z - to._x * _y + to._y * _x,
    };
    const double sine = std::hypot(vector[0], vector[1], vector[2]);
    const double factor = sine > 0.0 ? 2.0 * std::atan2(sine, dot(to)) / sine : 0.0;
    return {vector[0] * factor, vector[1] * factor, vector[2] * factor};
}

Quaternion Quaternion::slerp(const Quaternion& other, double share) const
{
    const Quaternion to = other.nearTo(*this);
    const auto vector = rotationTo(to);
    const double angle = std::hypot(vector[0], vector[1], vector[2]) / 2.0; // between the two on the sphere
    const double sine = std::sin(angle);
    // Where the two nearly coincide, interpolation is linear.
    const double near = sine > 1e-9 ? std::sin((1.0 - share) * angle) / sine : 1.0 - share;
    const double far = sine > 1e-9 ? std::sin(share * angle) / sine : share;
    return Quaternion(near * _x + far * to._x, near * _y + far * to._y, near * _z + far * to._z,
                      near * _w + far * to._w)
        .normalized();
}

} // namespace Trovio::Nodes
