#include "nodes/relay/RotationMatrix.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr double tolerance = 1e-3; // of lengths and angles that should be 1 and right

double at(const RotationMatrix& matrix, std::size_t row, std::size_t column)
{
    return matrix[row * 3 + column];
}

double dotOfColumns(const RotationMatrix& matrix, std::size_t a, std::size_t b)
{
    return at(matrix, 0, a) * at(matrix, 0, b) + at(matrix, 1, a) * at(matrix, 1, b) +
           at(matrix, 2, a) * at(matrix, 2, b);
}

double determinant(const RotationMatrix& m)
{
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
}

} // namespace

// Written so that what is no number is no rotation, either.
bool isRotation(const RotationMatrix& matrix)
{
    for (std::size_t a = 0; a < 3; ++a)
        for (std::size_t b = a; b < 3; ++b)
            if (!(std::fabs(dotOfColumns(matrix, a, b) - (a == b ? 1.0 : 0.0)) <= tolerance))
                return false;
    return determinant(matrix) > 0.0;
}

// From the largest of the four, so that nothing is divided by a small number.
Quaternion toQuaternion(const RotationMatrix& matrix)
{
    const double trace = matrix[0] + matrix[4] + matrix[8];
    if (trace > 0.0) {
        const double s = std::sqrt(trace + 1.0) * 2.0;
        return Quaternion((at(matrix, 2, 1) - at(matrix, 1, 2)) / s, (at(matrix, 0, 2) - at(matrix, 2, 0)) / s,
                          (at(matrix, 1, 0) - at(matrix, 0, 1)) / s, s / 4.0)
            .normalized();
    }
    std::size_t i = at(matrix, 1, 1) > at(matrix, 0, 0) ? 1 : 0;
    i = at(matrix, 2, 2) > at(matrix, i, i) ? 2 : i;
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    const double s = std::sqrt(std::max(0.0, 1.0 + at(matrix, i, i) - at(matrix, j, j) - at(matrix, k, k))) * 2.0;
    std::array<double, 3> axis{};
    axis[i] = s / 4.0;
    axis[j] = (at(matrix, j, i) + at(matrix, i, j)) / s;
    axis[k] = (at(matrix, k, i) + at(matrix, i, k)) / s;
    return Quaternion(axis[0], axis[1], axis[2], (at(matrix, k, j) - at(matrix, j, k)) / s).normalized();
}

RotationMatrix toMatrix(const Quaternion& unit)
{
    const auto [x, y, z, w] = unit;
    return {1.0 - 2.0 * (y * y + z * z), 2.0 * (x * y - z * w),       2.0 * (x * z + y * w),
            2.0 * (x * y + z * w),       1.0 - 2.0 * (x * x + z * z), 2.0 * (y * z - x * w),
            2.0 * (x * z - y * w),       2.0 * (y * z + x * w),       1.0 - 2.0 * (x * x + y * y)};
}

} // namespace Trovio::Nodes
