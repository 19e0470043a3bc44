#include "nodes/relay/RotationMatrix.h"

namespace Trovio::Nodes {

Quaternion toQuaternion(const RotationMatrix& matrix)
{
    const auto [x, y, z, w] = quaternionOf(matrix);
    return Quaternion(x, y, z, w).normalized();
}

RotationMatrix toMatrix(const Quaternion& unit)
{
    const auto [x, y, z, w] = unit;
    return {1.0 - 2.0 * (y * y + z * z), 2.0 * (x * y - z * w),       2.0 * (x * z + y * w),
            2.0 * (x * y + z * w),       1.0 - 2.0 * (x * x + z * z), 2.0 * (y * z - x * w),
            2.0 * (x * z - y * w),       2.0 * (y * z + x * w),       1.0 - 2.0 * (x * x + y * y)};
}

} // namespace Trovio::Nodes
