#pragma once

#include "monitor/answer/SlotMap.h"

#include <string>

namespace Monitor {

/// Why a route from one slot to the other would be of no use: their types differ, unless something on the way converts
/// the values, or records would come back to where they were. Empty where neither is so.
std::string whyNoRoute(const SlotMap& map, const SlotMap::Place& from, const SlotMap::Place& to, bool isConverted);
} // namespace Monitor
