#pragma once

#include <cmath>
#include <cstdint>

// Times of a file are whole nanoseconds since 1970, without a sign; those of the product seconds in a double.
namespace Monitor::Mcap {

inline constexpr std::uint64_t inSecond = 1'000'000'000; // nanoseconds

/// 0 for what is before 1970, and for what is no date: from the year 2255 on.
inline std::uint64_t fileTimeOf(double seconds)
{
    if (!(seconds > 0 && seconds < 9e9))
        return 0;
    const double whole = std::floor(seconds);
    return static_cast<std::uint64_t>(whole) * inSecond +
           static_cast<std::uint64_t>(std::llround((seconds - whole) * 1e9));
}

/// The same double again for each time after April 1970, as its neighbours are more than a nanosecond away. Dividing by
/// 1e9 at once would miss some.
inline double secondsOf(std::uint64_t fileTime)
{
    const std::uint64_t whole = fileTime / inSecond;
    return static_cast<double>(whole) + static_cast<double>(fileTime % inSecond) / 1e9;
}
} // namespace Monitor::Mcap
