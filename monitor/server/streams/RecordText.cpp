#include "monitor/server/streams/RecordText.h"

#include <array>
#include <charconv>
#include <cmath>

namespace Monitor {

void appendSeconds(std::string& text, std::int64_t nanoseconds)
{
    constexpr std::int64_t second = 1'000'000'000;
    std::array<char, 32> whole{}, rest{};
    const auto wholeEnd = std::to_chars(whole.begin(), whole.end(), std::abs(nanoseconds / second)).ptr;
    std::to_chars(rest.begin(), rest.end(), second + std::abs(nanoseconds % second)); // "1" before its nine digits
    rest.front() = '.';
    if (nanoseconds < 0)
        text += '-';
    text.append(whole.begin(), wholeEnd).append(rest.data());
}

void appendStamp(std::string& text, const Trovio::Time& stamp)
{
    if (!std::isfinite(stamp.getSeconds())) {
        text += "null";
        return;
    }
    std::array<char, 400> digits{};
    const auto end =
        std::to_chars(digits.data(), digits.data() + digits.size(), stamp.getSeconds(), std::chars_format::fixed);
    text.append(digits.data(), end.ptr);
}

void appendValue(std::string& text, const SlotCodec& codec, const TapRecord& record)
{
    std::string json, ignored;
    text += codec.toJson(record._cdr, json, ignored) ? json : "null";
}
} // namespace Monitor
