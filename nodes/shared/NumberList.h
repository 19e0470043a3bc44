#pragma once

#include "trovio/Settings.h"
#include <charconv>
#include <optional>
#include <string_view>
#include <vector>

// Settings that hold several numbers: '1 0.5 -2'.
namespace Trovio::Nodes {

/// The parts of a text between blanks. They live as long as the text.
std::vector<std::string_view> splitWords(std::string_view text);

/// Nothing where the word is no number, has anything behind it, or does not fit. Infinities and not-a-number are read.
template <class Number>
std::optional<Number> parseNumber(std::string_view word)
{
    Number number{};
    const auto [end, problem] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (problem != std::errc() || end != word.data() + word.size())
        return std::nullopt;
    return number;
}

/// The numbers that a setting may hold, both bounds included. An infinite bound admits that infinity.
/// Unless told otherwise a range whose products and sums stay well inside 64 bits.
struct NumberRange {
    double _lowest = -1e12;
    double _highest = 1e12;
    bool contains(double number) const { return number >= _lowest && number <= _highest; }
};

/// What readComponents() takes, for a table of settings.
inline constexpr const char* numberList = "one number, or one for each component, separated by blanks";

/// One number for each of count components, from a setting that names one for all of them or one for each.
/// Throws InvalidFieldException.
std::vector<double> readComponents(const Settings& settings, const char* name, std::size_t count,
                                   const NumberRange& range = {});

} // namespace Trovio::Nodes
