#pragma once

#include "RosMessages.h" // generated
#include <array>
#include <string>

namespace Trovio::Nodes {

using PoseMatrix = std::array<double, 16>; // row by row, translation in the last column

/// Why the matrix is no pose, one that only turns and moves; empty, and the pose was written, if it is.
std::string writePose(const PoseMatrix& matrix, geometry_msgs_msg_dds__Pose_& pose);

/// What is wrong with the pose; empty, and the matrix was written, if nothing is. The quaternion need not be exactly
/// of length 1.
std::string readPose(const geometry_msgs_msg_dds__Pose_& pose, PoseMatrix& matrix);

} // namespace Trovio::Nodes
