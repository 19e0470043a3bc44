#include "nodes/relay/Quaternion.h"

namespace Trovio::Nodes {

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
