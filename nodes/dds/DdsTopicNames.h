#pragma once

#include "nodes/shared/SlotList.h"

namespace Trovio::Nodes {

/// Reads 'Wand Vec3f, Scan Vec3f[]'. A topic is called what its slot is called, on every machine.
/// Throws InvalidFieldException for anything else.
std::vector<ListedSlot> readDdsTopics(const Settings& settings, const char* setting);

/// Whether ROS 2 can have a topic of that name, which must be a topic's name here.
bool isRosTopicName(std::string_view name);

} // namespace Trovio::Nodes
