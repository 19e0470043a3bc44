#pragma once

#include "monitor/codec/SlotCodec.h"
#include "monitor/tap/AnyTap.h"

#include <string>

namespace Monitor {

/// Appends nanoseconds as seconds with all their digits.
void appendSeconds(std::string& text, std::int64_t nanoseconds);

/// Appends the time stamp in seconds, with all digits; "null" for one that is no number.
void appendStamp(std::string& text, const Trovio::Time& stamp);

/// Appends the value of a record as JSON; null where it has no text in JSON.
void appendValue(std::string& text, const SlotCodec& codec, const TapRecord& record);
} // namespace Monitor
