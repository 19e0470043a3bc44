#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace Trovio {

/// Three rows of three; a turned vector is matrix times column.
using RotationMatrix = std::array<double, 9>;

/// Whether it only turns: columns of length 1 at right angles, to a thousandth, and no mirror. Not where a number is
/// none.
inline bool isRotation(const RotationMatrix& m)
{
    constexpr double tolerance = 1e-3;
    for (std::size_t a = 0; a < 3; ++a)
        for (std::size_t b = a; b < 3; ++b) {
            const double dot = m[a] * m[b] + m[3 + a] * m[3 + b] + m[6 + a] * m[6 + b];
            if (!(std::fabs(dot - (a == b ? 1.0 : 0.0)) <= tolerance))
                return false;
        }
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
               m[2] * (m[3] * m[7] - m[4] * m[6]) >
           0.0;
}

/// The quaternion x, y, z, w of a rotation, of length 1 to a thousandth.
inline std::array<double, 4> quaternionOf(const RotationMatrix& m)
{
    const auto at = [&m](std::size_t row, std::size_t column) { return m[row * 3 + column]; };
    // From the largest of the four, so that nothing is divided by a small number.
    if (const double trace = m[0] + m[4] + m[8]; trace > 0.0) {
        const double s = std::sqrt(trace + 1.0) * 2.0;
        return {(at(2, 1) - at(1, 2)) / s, (at(0, 2) - at(2, 0)) / s, (at(1, 0) - at(0, 1)) / s, s / 4.0};
    }
    std::size_t i = at(1, 1) > at(0, 0) ? 1 : 0;
    i = at(2, 2) > at(i, i) ? 2 : i;
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    const double s = std::sqrt(std::max(0.0, 1.0 + at(i, i) - at(j, j) - at(k, k))) * 2.0;
    std::array<double, 4> q{};
    q[i] = s / 4.0;
    q[j] = (at(j, i) + at(i, j)) / s;
    q[k] = (at(k, i) + at(i, k)) / s;
    q[3] = (at(k, j) - at(j, k)) / s;
    return q;
}

} // namespace Trovio
