#pragma once

#include "RosMessages.h" // generated
#include "trovio/SlotTypes.h"
#include "trovio/Values.h"

namespace Trovio::Nodes {

/// The one list of slot value types that ROS 2 has a message for: ROW(type, package, message).
#define TROVIO_ROS_TYPES(ROW)                                                                                          \
    ROW(bool, std_msgs, Bool)                                                                                          \
    ROW(ColorRGBA, std_msgs, ColorRGBA)                                                                                \
    ROW(double, std_msgs, Float64)                                                                                     \
    ROW(float, std_msgs, Float32)                                                                                      \
    ROW(long, std_msgs, Int64)                                                                                         \
    ROW(Matrix4<double>, geometry_msgs, Pose)                                                                          \
    ROW(Matrix4<float>, geometry_msgs, Pose)                                                                           \
    ROW(Rotation, geometry_msgs, Quaternion)                                                                           \
    ROW(std::string, std_msgs, String)                                                                                 \
    ROW(Time, builtin_interfaces, Time)                                                                                \
    ROW(Vec3<double>, geometry_msgs, Point)                                                                            \
    ROW(Vec3<float>, geometry_msgs, Point32)                                                                           \
    ROW(SharedImage, sensor_msgs, Image)                                                                               \
    ROW(SharedVector<double>, std_msgs, Float64MultiArray)                                                             \
    ROW(SharedVector<float>, std_msgs, Float32MultiArray)                                                              \
    ROW(SharedVector<long>, std_msgs, Int64MultiArray)

/// The message of a slot value type; not there for those that have none.
template <class T>
struct RosType;

#define TROVIO_ROS_TYPE(type, package, message)                                                                        \
    template <>                                                                                                        \
    struct RosType<type> {                                                                                             \
        using Sample = package##_msg_dds__##message##_;                                                                \
        static const dds_topic_descriptor_t& descriptor() { return package##_msg_dds__##message##__desc; }             \
        static constexpr const char* Name = #package "/msg/" #message;                                                 \
    };
TROVIO_ROS_TYPES(TROVIO_ROS_TYPE)
#undef TROVIO_ROS_TYPE

/// Calls visit(TypeTag<T>()) for each slot value type that has a message.
template <class Visit>
void forEachRosType(Visit&& visit)
{
#define TROVIO_ROS_VISIT(type, package, message) visit(TypeTag<type>());
    TROVIO_ROS_TYPES(TROVIO_ROS_VISIT)
#undef TROVIO_ROS_VISIT
}

} // namespace Trovio::Nodes
