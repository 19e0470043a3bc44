#include "nodes/text/TextNumber.h"

#include "nodes/shared/NumberList.h"
#include <algorithm>
#include <array>

namespace Trovio::Nodes {

namespace {

bool isSameWord(std::string_view word, std::string_view lower)
{
    return std::ranges::equal(word, lower, [](char character, char small) {
        return (character >= 'A' && character <= 'Z' ? character - 'A' + 'a' : character) == small;
    });
}

std::optional<TextNumber> parseSwitch(std::string_view word)
{
    constexpr std::string_view words[] = {"false", "true", "off", "on", "no", "yes", "offline", "online"};
    for (std::size_t i = 0; i < std::size(words); ++i)
        if (isSameWord(word, words[i]))
            return toTextNumber(static_cast<std::int64_t>(i % 2));
    return std::nullopt;
}

template <class Number>
std::string format(Number number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

} // namespace

std::optional<TextNumber> parseTextNumber(std::string_view word)
{
    const bool hasPlus = word.size() > 1 && word.front() == '+' && word[1] != '-';
    const std::string_view digits = hasPlus ? word.substr(1) : word;
    const auto number = parseNumber<double>(digits);
    if (!number)
        return parseSwitch(word);
    if (!std::isfinite(*number))
        return std::nullopt;
    return TextNumber{*number, parseNumber<std::int64_t>(digits)};
}

bool readTextNumbers(std::string_view text, std::vector<TextNumber>& numbers)
{
    for (;;) {
        const std::size_t begin = text.find_first_not_of(BetweenNumbers);
        if (begin == text.npos)
            return true;
        text.remove_prefix(begin);
        const std::size_t length = std::min(text.find_first_of(BetweenNumbers), text.size());
        const auto number = parseTextNumber(text.substr(0, length));
        if (!number)
            return false;
        numbers.push_back(*number);
        text.remove_prefix(length);
    }
}

std::string formatTextNumber(const TextNumber& number)
{
    return number._whole ? format(*number._whole) : format(number._value);
}

TextNumber shortestNumber(float component)
{
    return {parseNumber<double>(format(component)).value_or(component)};
}

} // namespace Trovio::Nodes
