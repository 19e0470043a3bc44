#pragma once

#include "monitor/codec/SlotCodec.h"
#include "monitor/tap/AnyTap.h"

#include <string>

namespace Monitor {

/// Nanoseconds as seconds with all their digits.
std::string secondsText(std::int64_t nanoseconds);

/// The time stamp in seconds, with all digits; "null" for one that is no number.
std::string stampText(const Trovio::Time& stamp);

/// The value of a record as JSON; null where it has no text in JSON.
std::string valueText(const SlotCodec& codec, const TapRecord& record);
} // namespace Monitor
