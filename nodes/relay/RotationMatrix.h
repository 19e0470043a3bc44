#pragma once

#include "nodes/relay/Quaternion.h"

namespace Trovio::Nodes {

/// Three rows of three; a turned vector is matrix times column.
using RotationMatrix = std::array<double, 9>;

/// Whether it only turns: columns of length 1 at right angles, and no mirror. Not where a number is none.
bool isRotation(const RotationMatrix& matrix);

/// Of length 1. The matrix is a rotation.
Quaternion toQuaternion(const RotationMatrix& matrix);

/// The quaternion is of length 1.
RotationMatrix toMatrix(const Quaternion& unit);

} // namespace Trovio::Nodes
