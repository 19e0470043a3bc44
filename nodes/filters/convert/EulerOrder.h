#pragma once

#include "nodes/relay/Quaternion.h"
#include <optional>
#include <string_view>

namespace Trovio::Nodes {

/// A rotation as three turns about the fixed axes x, y and z, in the order that a text names: of "zxy" the one about z
/// is done first. About axes that turn along it is the same with the letters read backwards.
class EulerOrder {
public:
    /// Each of the letters x, y and z once.
    static std::optional<EulerOrder> parse(std::string_view text);

    /// Angles in radians about x, y and z, in this order.
    Quaternion toRotation(const std::array<double, 3>& angles) const;

    /// The same angles, that of the second turn from -pi/2 to pi/2. Where that is one of these two, the first and the
    /// last turn are about one line, and the first is 0. The rotation is of length 1.
    std::array<double, 3> toAngles(const Quaternion& rotation) const;

private:
    std::array<std::size_t, 3> _axes{}; // in the order of the turns
};

} // namespace Trovio::Nodes
