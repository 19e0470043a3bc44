#include "monitor/codec/JsonNumber.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace Monitor {
namespace {

// Between these the JSON library writes numbers without an exponent.
constexpr double leastPlain = 1e-4, firstBig = 1e15;
constexpr float firstInexact = 1e7F; // from here on, a float without exponent has more digits than it needs

template <class Real>
void append(std::string& text, Real value)
{
    const Real size = std::abs(value);
    const bool isPlain = size == 0 || (size >= static_cast<Real>(leastPlain) && size < static_cast<Real>(firstBig));
    std::array<char, 64> digits{};
    const auto form = isPlain ? std::chars_format::fixed : std::chars_format::scientific;
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value, form).ptr;
    const std::string_view written(digits.data(), static_cast<std::size_t>(end - digits.data()));
    text += written;
    if (isPlain && written.find('.') == std::string_view::npos)
        text += ".0";
}
} // namespace

void appendJson(std::string& text, double value)
{
    if (std::isfinite(value))
        append(text, value);
    else
        text += "null";
}

void appendJson(std::string& text, float value)
{
    if (std::abs(value) < firstInexact)
        return append(text, value);
    std::array<char, 32> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    double shortest = value;
    std::from_chars(digits.data(), end, shortest);
    appendJson(text, shortest);
}

void appendJson(std::string& text, bool value)
{
    text += value ? "true" : "false";
}

void appendJson(std::string& text, long value)
{
    std::array<char, 32> digits{};
    text.append(digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr);
}
} // namespace Monitor
