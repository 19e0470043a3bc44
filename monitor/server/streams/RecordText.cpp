#include "monitor/server/streams/RecordText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Monitor {

std::string secondsText(std::int64_t nanoseconds)
{
    constexpr std::int64_t second = 1'000'000'000;
    std::array<char, 32> whole{}, rest{};
    const auto wholeEnd = std::to_chars(whole.begin(), whole.end(), std::abs(nanoseconds / second)).ptr;
    std::to_chars(rest.begin(), rest.end(), second + std::abs(nanoseconds % second)); // "1" before its nine digits
    rest.front() = '.';
    return (nanoseconds < 0 ? "-" : "") + std::string(whole.begin(), wholeEnd) + rest.data();
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
