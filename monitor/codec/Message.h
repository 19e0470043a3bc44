#pragma once

#include <string>
#include <string_view>

namespace Monitor {

/// How a slot type is called in ROS 2 and what it looks like there.
struct Message {
    std::string _name; // "geometry_msgs/msg/Point32"
    std::string _text; // its fields, then each message that it is made of behind a line of equals signs
};

/// Standard names where the standard message says exactly the same, "ostrel_msgs/msg/…" else. Throws
/// std::out_of_range for what is no slot type.
Message messageOf(std::string_view slotType);

/// tf2_msgs/msg/TFMessage
const Message& transformsMessage();

} // namespace Monitor
