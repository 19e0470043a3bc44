#include "nodes/filters/convert/EulerOrder.h"

#include "nodes/filters/convert/AxisOrder.h"
#include "nodes/relay/RotationMatrix.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {
constexpr double coincide = 5e-7; // cosine of the second angle, below which rounding decides what the first one is
}

std::optional<EulerOrder> EulerOrder::parse(std::string_view text)
{
    const auto order = AxisOrder::parse(text, 3);
    if (!order || std::ranges::any_of(text, [](char letter) { return letter < 'x'; }))
        return std::nullopt; // capitals mean a negated axis, of which there is none
    EulerOrder euler;
    for (std::size_t i = 0; i < 3; ++i)
        euler._axes[i] = order->source(i);
    return euler;
}

Quaternion EulerOrder::toRotation(const std::array<double, 3>& angles) const
{
    const auto turn = [&](std::size_t i) { return Quaternion::about(_axes[i], angles[_axes[i]]); };
    return turn(2) * turn(1) * turn(0);
}

std::array<double, 3> EulerOrder::toAngles(const Quaternion& rotation) const
{
    const RotationMatrix matrix = toMatrix(rotation);
    const auto at = [&](std::size_t row, std::size_t column) { return matrix[_axes[row] * 3 + _axes[column]]; };
    const double hand = (_axes[0] + 1) % 3 == _axes[1] ? 1.0 : -1.0;
    const double cosine = std::hypot(at(2, 1), at(2, 2)); // of the second angle
    const double first = cosine > coincide ? std::atan2(hand * at(2, 1), at(2, 2)) : 0.0;
    // What is left without the first turn: its second column, which the second turn does not change.
    const auto left = [&](std::size_t row) {
        return std::cos(first) * at(row, 1) - hand * std::sin(first) * at(row, 2);
    };
    std::array<double, 3> angles{};
    angles[_axes[0]] = first;
    angles[_axes[1]] = std::atan2(-hand * at(2, 0), cosine);
    angles[_axes[2]] = std::atan2(-hand * left(0), left(1));
    return angles;
}

} // namespace Trovio::Nodes
