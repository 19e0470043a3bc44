#include "monitor/server/streams/RecordText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace Monitor {

std::string secondsText(std::int64_t nanoseconds)
{
    constexpr std::int64_t second = 1'000'000'000;
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%s%lld.%09lld", nanoseconds < 0 ? "-" : "",
                  static_cast<long long>(std::abs(nanoseconds / second)),
                  static_cast<long long>(std::abs(nanoseconds % second)));
    return text.data();
}

std::string stampText(const Trovio::Time& stamp)
{
    if (!std::isfinite(stamp.getSeconds()))
        return "null";
    std::array<char, 400> text{};
    const auto end =
        std::to_chars(text.data(), text.data() + text.size(), stamp.getSeconds(), std::chars_format::fixed);
    return {text.data(), end.ptr};
}

std::string valueText(const SlotCodec& codec, const TapRecord& record)
{
    std::string json, ignored;
    return codec.toJson(record._cdr, json, ignored) ? json : "null";
}
} // namespace Monitor
