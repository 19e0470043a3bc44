#include "nodes/dds/wire/RosPose.h"

#include <algorithm>
#include <cmath>

namespace Trovio::Nodes {

namespace {

constexpr double tolerance = 1e-3; // of lengths and angles that should be 1 and right

double at(const PoseMatrix& matrix, std::size_t row, std::size_t column)
{
    return matrix[row * 4 + column];
}

double dotOfColumns(const PoseMatrix& matrix, std::size_t a, std::size_t b)
{
    return at(matrix, 0, a) * at(matrix, 0, b) + at(matrix, 1, a) * at(matrix, 1, b) +
           at(matrix, 2, a) * at(matrix, 2, b);
}

double determinant(const PoseMatrix& m)
{
    return m[0] * (m[5] * m[10] - m[6] * m[9]) - m[1] * (m[4] * m[10] - m[6] * m[8]) +
           m[2] * (m[4] * m[9] - m[5] * m[8]);
}

/// Written so that what is no number is no rotation, either.
bool isRigid(const PoseMatrix& matrix)
{
    for (std::size_t a = 0; a < 3; ++a)
        for (std::size_t b = a; b < 3; ++b)
            if (!(std::fabs(dotOfColumns(matrix, a, b) - (a == b ? 1.0 : 0.0)) <= tolerance))
                return false;
    return determinant(matrix) > 0.0 && matrix[12] == 0.0 && matrix[13] == 0.0 && matrix[14] == 0.0 &&
           matrix[15] == 1.0;
}

/// From the largest of the four, so that nothing is divided by a small number.
geometry_msgs_msg_dds__Quaternion_ toQuaternion(const PoseMatrix& matrix)
{
    const double trace = matrix[0] + matrix[5] + matrix[10];
    if (trace > 0.0) {
        const double s = std::sqrt(trace + 1.0) * 2.0;
        return {(at(matrix, 2, 1) - at(matrix, 1, 2)) / s, (at(matrix, 0, 2) - at(matrix, 2, 0)) / s,
                (at(matrix, 1, 0) - at(matrix, 0, 1)) / s, s / 4.0};
    }
    std::size_t i = at(matrix, 1, 1) > at(matrix, 0, 0) ? 1 : 0;
    i = at(matrix, 2, 2) > at(matrix, i, i) ? 2 : i;
    const std::size_t j = (i + 1) % 3, k = (i + 2) % 3;
    const double s = std::sqrt(std::max(0.0, 1.0 + at(matrix, i, i) - at(matrix, j, j) - at(matrix, k, k))) * 2.0;
    std::array<double, 3> axis{};
    axis[i] = s / 4.0;
    axis[j] = (at(matrix, j, i) + at(matrix, i, j)) / s;
    axis[k] = (at(matrix, k, i) + at(matrix, i, k)) / s;
    return {axis[0], axis[1], axis[2], (at(matrix, k, j) - at(matrix, j, k)) / s};
}

} // namespace

std::string writePose(const PoseMatrix& matrix, geometry_msgs_msg_dds__Pose_& pose)
{
    if (!isRigid(matrix))
        return "a matrix that does more than turn and move, which no pose can say";
    pose = {{matrix[3], matrix[7], matrix[11]}, toQuaternion(matrix)};
    return {};
}

std::string readPose(const geometry_msgs_msg_dds__Pose_& pose, PoseMatrix& matrix)
{
    const auto& q = pose.orientation;
    const double length = std::sqrt(q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w);
    if (!(std::fabs(length - 1.0) <= tolerance))
        return "a quaternion of length " + std::to_string(length);
    const double x = q.x / length, y = q.y / length, z = q.z / length, w = q.w / length;
    matrix = {1.0 - 2.0 * (y * y + z * z),
              2.0 * (x * y - z * w),
              2.0 * (x * z + y * w),
              pose.position.x,
              2.0 * (x * y + z * w),
              1.0 - 2.0 * (x * x + z * z),
              2.0 * (y * z - x * w),
              pose.position.y,
              2.0 * (x * z - y * w),
              2.0 * (y * z + x * w),
              1.0 - 2.0 * (x * x + y * y),
              pose.position.z,
              0.0,
              0.0,
              0.0,
              1.0};
    return {};
}

} // namespace Trovio::Nodes
