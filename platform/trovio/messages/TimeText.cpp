#include "trovio/messages/TimeText.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace Trovio {

std::string dateOf(const Time& time)
{
    const double seconds = time.getSeconds();
    std::array<char, 64> text{};
    if (!(seconds >= 0 && seconds < endOfDates)) {
        std::snprintf(text.data(), text.size(), "%.17g s", seconds);
        return text.data();
    }
    const auto whole = static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&whole, &parts);
    const std::size_t size = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    const int milliseconds = static_cast<int>((seconds - std::floor(seconds)) * 1000);
    std::snprintf(text.data() + size, text.size() - size, ".%03dZ", milliseconds);
    return text.data();
}

std::string inSeconds(double seconds)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.3g s", seconds);
    return text.data();
}

} // namespace Trovio
