#pragma once

#include "trovio/Time.h"
#include <cstdint>

namespace Trovio::Nodes {

/// A time tag of OSC: seconds since 1900 in the upper 32 bits, fractions of a second in the lower.
using OscTimeTag = std::uint64_t;

constexpr OscTimeTag OscImmediately = 1;

/// Dates from 1968-01-20 to 2104-02-26; immediately, and no time at all (0), mean the moment of arrival.
Time fromTimeTag(OscTimeTag tag, const Time& arrival);

/// The nearest tag, exact for today's dates. Immediately for a date outside the range of fromTimeTag().
OscTimeTag toTimeTag(const Time& time);

} // namespace Trovio::Nodes
