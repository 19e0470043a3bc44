#include "nodes/dds/wire/RosPose.h"

#include "nodes/relay/RotationMatrix.h"

namespace Trovio::Nodes {

namespace {

constexpr double tolerance = 1e-3; // of the length of a quaternion

RotationMatrix rotationOf(const PoseMatrix& m)
{
    return {m[0], m[1], m[2], m[4], m[5], m[6], m[8], m[9], m[10]};
}

bool isRigid(const PoseMatrix& matrix)
{
    return isRotation(rotationOf(matrix)) && matrix[12] == 0.0 && matrix[13] == 0.0 && matrix[14] == 0.0 &&
           matrix[15] == 1.0;
}

} // namespace

std::string writePose(const PoseMatrix& matrix, geometry_msgs_msg_dds__Pose_& pose)
{
    if (!isRigid(matrix))
        return "a matrix that does more than turn and move, which no pose can say";
    const Quaternion q = toQuaternion(rotationOf(matrix));
    pose = {{matrix[3], matrix[7], matrix[11]}, {q._x, q._y, q._z, q._w}};
    return {};
}

std::string readPose(const geometry_msgs_msg_dds__Pose_& pose, PoseMatrix& matrix)
{
    const Quaternion q(pose.orientation.x, pose.orientation.y, pose.orientation.z, pose.orientation.w);
    if (!(std::fabs(q.length() - 1.0) <= tolerance))
        return "a quaternion of length " + std::to_string(q.length());
    const RotationMatrix r = toMatrix(q.normalized());
    matrix = {r[0], r[1], r[2], pose.position.x, r[3], r[4], r[5], pose.position.y,
              r[6], r[7], r[8], pose.position.z, 0.0,  0.0,  0.0,  1.0};
    return {};
}

} // namespace Trovio::Nodes
