#pragma once

#include <array>

namespace Ostrel {

/// A rotation, kept as an axis with an angle in radians and as a unit quaternion x, y, z, w. Writing one form makes the
/// other stale; reading a stale form works it out first. No rotation at first.
/// Threads: one at a time, also for reading.
class Rotation {
public:
    enum Mark : int { BothValid = 0, QuaternionStale = 1, AxisAngleStale = 2 };

    Rotation() = default;

    /// The axis may have any length; with length 0 (up to 1e-6) there is no rotation.
    void setAxisAngle(float x, float y, float z, float angle);
    /// Stored as given.
    void setQuaternion(float x, float y, float z, float w);

    /// x, y and z of the axis.
    const std::array<float, 3>& axis() const;
    float angle() const;
    /// x, y, z and w.
    const std::array<float, 4>& quaternion() const;

    /// Which form is stale right now.
    Mark mark() const { return _mark; }

private:
    void updateQuaternion() const;
    void updateAxisAngle() const;

    mutable std::array<float, 3> _axis{0.0F, 0.0F, 1.0F};
    mutable float _angle = 0.0F;
    mutable std::array<float, 4> _quaternion{0.0F, 0.0F, 0.0F, 1.0F};
    mutable Mark _mark = BothValid;
};

} // namespace Ostrel
