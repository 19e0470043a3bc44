#pragma once

#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Trovio::Nodes {

/// A number as texts write it: finite, and whole ones with all of their digits.
struct TextNumber {
    double _value = 0.0;
    std::optional<std::int64_t> _whole{}; // the same, where it is a whole number of 64 bits
    bool operator==(const TextNumber&) const = default;
};

/// Of a word such as "-1.5e3" or "+2". Words for true and false, "on" and "off", "yes" and "no", "online" and "offline"
/// in any case, count as 1 and 0. Nothing for any other word, and for a number that is not finite.
std::optional<TextNumber> parseTextNumber(std::string_view word);

/// What may stand between numbers.
constexpr std::string_view BetweenNumbers = " \t\r\n:=,;";

/// Appends the numbers of a text. False where there is another word; numbers is undefined then.
bool readTextNumbers(std::string_view text, std::vector<TextNumber>& numbers);

/// The shortest text that is read as the same number.
std::string formatTextNumber(const TextNumber& number);

/// The number that has the shortest text that is read as this float.
TextNumber shortestNumber(float component);

/// Nothing for a component that is not finite.
template <class Component>
std::optional<TextNumber> toTextNumber(Component component)
{
    if constexpr (std::is_integral_v<Component>) {
        return TextNumber{static_cast<double>(component), static_cast<std::int64_t>(component)};
    } else {
        if (!std::isfinite(component))
            return std::nullopt;
        if constexpr (std::is_same_v<Component, float>)
            return shortestNumber(component);
        else
            return TextNumber{component};
    }
}

/// Whole components are rounded; true is what is not 0. Nothing where the number does not fit.
template <class Component>
std::optional<Component> fromTextNumber(const TextNumber& number)
{
    using Limits = std::numeric_limits<Component>;
    if constexpr (std::is_same_v<Component, bool>) {
        return number._value != 0.0;
    } else if constexpr (std::is_integral_v<Component>) {
        static_assert(sizeof(Component) == sizeof(std::int64_t));
        if (number._whole)
            return static_cast<Component>(*number._whole);
        // The largest whole number is no double, but the power of two behind it is.
        const double rounded = std::round(number._value);
        const double end = -static_cast<double>(Limits::min());
        return rounded < end && rounded >= -end ? std::optional(static_cast<Component>(rounded)) : std::nullopt;
    } else {
        const bool fits = std::abs(number._value) <= static_cast<double>(Limits::max());
        return fits ? std::optional(static_cast<Component>(number._value)) : std::nullopt;
    }
}

} // namespace Trovio::Nodes
