#pragma once

#include "trovio/Rotation.h"
#include <array>
#include <cmath>

namespace Trovio::Nodes {

/// A rotation in double precision.
struct Quaternion {
    double _x = 0.0, _y = 0.0, _z = 0.0, _w = 1.0;

    Quaternion() = default;
    Quaternion(double x, double y, double z, double w) : _x(x), _y(y), _z(z), _w(w) {}
    explicit Quaternion(const Rotation& rotation) : Quaternion(rotation[0], rotation[1], rotation[2], rotation[3]) {}

    /// By an angle in radians about the axis x (0), y (1) or z (2).
    static Quaternion about(std::size_t axis, double angle);

    /// Of length 1, unless this has none.
    Rotation toRotation() const
    {
        const Quaternion unit = normalized();
        return {float(unit._x), float(unit._y), float(unit._z), float(unit._w)};
    }

    double dot(const Quaternion& other) const { return _x * other._x + _y * other._y + _z * other._z + _w * other._w; }
    double length() const { return std::sqrt(dot(*this)); }
    /// Turns by other first, then by this.
    Quaternion operator*(const Quaternion& other) const;
    Quaternion operator*(double factor) const { return {_x * factor, _y * factor, _z * factor, _w * factor}; }
    Quaternion normalized() const { return *this * (1.0 / length()); }

    /// The same rotation with the sign whose dot product with other is not negative: the way between them is the
    /// shorter one.
    Quaternion nearTo(const Quaternion& other) const { return dot(other) < 0.0 ? *this * -1.0 : *this; }

    /// The rotation that takes this one to other on the shorter way, as axis times angle in radians. Both of length 1.
    std::array<double, 3> rotationTo(const Quaternion& other) const;

    /// The point of the shorter arc from this one (share 0) to other (share 1). Both of length 1.
    Quaternion slerp(const Quaternion& other, double share) const;
};

} // namespace Trovio::Nodes
