#pragma once

#include <dds/dds.h>
#include <string>

namespace Trovio::Nodes {

/// How values are laid out in the samples of a node's topics, and which are accepted.
struct DdsFormat {
    bool _isRos = false;   // as messages of ROS 2, on its topics
    bool _isFinite = true; // samples with numbers that are infinite or none are refused

    /// A topic's name in the domain.
    std::string nameOf(const std::string& topic) const { return _isRos ? "rt/" + topic : topic; }
};

/// The topic type that a slot value type travels as; null if there is none in that format.
const dds_topic_descriptor_t* findTopicType(const std::string& slotType, const DdsFormat& format);

/// What people know a topic type by: its slot value type, its message, or else its own name, shortened.
std::string describeTopicType(const std::string& name);

/// "Bool (std_msgs/msg/Bool), …": all slot value types that have a message.
std::string listRosTypes();

} // namespace Trovio::Nodes
