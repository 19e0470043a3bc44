#pragma once

#include "monitor/answer/SlotMap.h"

#include <string>

namespace Monitor {

/// Why a route from one slot to the other would be of no use: their types differ, unless something on the way converts
/// the values, or records would come back to where they were. Empty where neither is so.
std::string whyNoRoute(const SlotMap& map, const SlotMap::Place& from, const SlotMap::Place& to, bool isConverted);

/// The same of a route from a pattern: whether records would come back to where they were by any of the pairs that it
/// joins. Pairs of two types stay apart, and do no harm. Throws Trovio::Exception where the texts make no route.
std::string whyNoPattern(const SlotMap& map, const std::string& from, const std::string& to);
} // namespace Monitor
