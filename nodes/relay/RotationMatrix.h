#pragma once

#include "nodes/relay/Quaternion.h"
#include "trovio/RotationMatrix.h"

namespace Trovio::Nodes {

/// Of length 1. The matrix is a rotation.
Quaternion toQuaternion(const RotationMatrix& matrix);

/// The quaternion is of length 1.
RotationMatrix toMatrix(const Quaternion& unit);

} // namespace Trovio::Nodes
