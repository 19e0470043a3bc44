#pragma once

#include "trovio/Vec.h"
#include <array>
#include <cstddef>
#include <optional>

namespace Trovio::Nodes {

enum class InputKind { Axis, Button, Motion };

/// The axes, in the order of their indices. Sticks from -1 to 1, right and up positive; triggers from 0 to 1.
enum ControllerAxis : std::size_t { LeftX, LeftY, RightX, RightY, LeftTrigger, RightTrigger, AxisCount };

/// The motion sensors: rad/s around, and m/s² along, x (right), y (up) and z (towards the holder).
enum ControllerMotion : std::size_t { Gyro, Accelerometer, MotionCount };

constexpr std::size_t ButtonCount = 21; // ControllerSlots has their names

/// Something moved on a device.
struct InputChange {
    int _device;
    InputKind _kind;
    std::size_t _index;  // below the count of its kind
    Vec3<float> _values; // of an axis the first one; of a button not 0 while it is held down
};

/// The state of all controls of a device; at rest by default.
struct ControllerState {
    std::array<float, AxisCount> _axes{};
    std::array<bool, ButtonCount> _buttons{};
    std::array<std::optional<Vec3<float>>, MotionCount> _motions{}; // nothing before the first reading

    bool operator==(const ControllerState&) const = default;

    void apply(const InputChange& change)
    {
        if (change._kind == InputKind::Axis)
            _axes[change._index] = change._values[0];
        else if (change._kind == InputKind::Button)
            _buttons[change._index] = change._values[0] != 0.0F;
        else
            _motions[change._index] = change._values;
    }
};

/// How strongly the slow and the fast motor turn, from 0 to 1, and for how many seconds.
struct Rumble {
    float _slow = 0.0F;
    float _fast = 0.0F;
    double _seconds = 0.0;
};

} // namespace Trovio::Nodes
