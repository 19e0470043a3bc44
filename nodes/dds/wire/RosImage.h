#pragma once

#include "RosMessages.h" // generated
#include "trovio/Image.h"
#include <string>

namespace Trovio::Nodes {

/// Makes the message refer to the image, which must outlive it. Why there is no such message; empty if there is.
std::string referImage(const Image& image, sensor_msgs_msg_dds__Image_& message);

/// Takes over the message's image, without the gaps that its rows may have. What is wrong with it; empty if nothing is.
std::string readImage(const sensor_msgs_msg_dds__Image_& message, Image& image);

} // namespace Trovio::Nodes
