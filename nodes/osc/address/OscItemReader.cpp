#include "nodes/osc/address/OscItemReader.h"

#include "trovio/SlotTypes.h"
#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

namespace Trovio::Nodes {

namespace {

constexpr std::string_view quotedText = "s:\"";

template <class Number>
std::optional<Number> readNumber(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<OscWrittenItem> readWhole(char tag, std::string_view text)
{
    const auto number = readNumber<std::int64_t>(text);
    const bool fits = number && (tag == 'h' || (*number >= std::numeric_limits<std::int32_t>::min() &&
                                                *number <= std::numeric_limits<std::int32_t>::max()));
    if (!fits)
        return std::nullopt;
    return OscWrittenItem{OscFixedItem{tag, *number}, std::string(text)};
}

std::optional<OscWrittenItem> readReal(char tag, std::string_view text)
{
    const auto number = readNumber<double>(text);
    const double largest = tag == 'f' ? std::numeric_limits<float>::max() : std::numeric_limits<double>::max();
    if (!number || !(std::abs(*number) <= largest))
        return std::nullopt;
    return OscWrittenItem{OscFixedItem{tag, *number}, std::string(text)};
}

std::optional<OscWrittenItem> readText(std::string_view text)
{
    if (text.starts_with('"')) {
        if (text.size() < 2 || !text.ends_with('"'))
            return std::nullopt;
        text = text.substr(1, text.size() - 2);
    }
    const bool isShown = std::all_of(text.begin(), text.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte >= ' ' && byte != 0x7f && character != '"';
    });
    if (text.empty() || text.size() > MaxOscName || !isShown)
        return std::nullopt;
    return OscWrittenItem{OscFixedItem{'s', std::string(text)}, std::string(text)};
}

std::optional<OscWrittenItem> readFixed(char tag, std::string_view value)
{
    switch (tag) {
    case 'i':
    case 'h':
        return readWhole(tag, value);
    case 'f':
    case 'd':
        return readReal(tag, value);
    case 's':
        return readText(value);
    default:
        return std::nullopt;
    }
}

std::optional<OscWrittenItem> readSlot(std::string_view word)
{
    const std::size_t colon = word.find(':');
    const std::string_view type = word.substr(0, colon);
    const std::string_view name = colon == std::string_view::npos ? std::string_view() : word.substr(colon + 1);
    const bool isNamed = colon != std::string_view::npos;
    if (!withSlotType(type, [](auto) {}) || (isNamed && (name.empty() || name.size() > MaxOscName)) ||
        !isOscName(name) || name.starts_with('/') || name.ends_with('/'))
        return std::nullopt;
    return OscWrittenItem{OscSlotItem{std::string(type)}, std::string(name), type.ends_with("[]")};
}

std::string typeNames()
{
    std::string names;
    forEachSlotType([&names]<class T>(TypeTag<T>) { names += (names.empty() ? "" : ", ") + TypeName<T>::getName(); });
    return names;
}

} // namespace

bool isOscName(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char character) {
        return character > ' ' && character <= '~' &&
               std::string_view("#*,?[]{}").find(character) == std::string_view::npos;
    });
}

std::size_t measureOscItem(std::string_view text)
{
    std::size_t begin = 0;
    if (text.starts_with(quotedText))
        begin = std::min(text.find('"', quotedText.size()), text.size());
    return std::min(text.find_first_of(" ,", begin), text.size());
}

std::optional<OscWrittenItem> readOscItem(std::string_view word)
{
    if (word == "_" || word == "_[]")
        return OscWrittenItem{OscSkippedItem{word != "_"}, {}, word != "_"};
    if (word.size() == 1 && std::string_view("TFNI").find(word.front()) != std::string_view::npos)
        return OscWrittenItem{OscFixedItem{word.front()}, std::string(word)};
    if (word.size() > 1 && word[1] == ':')
        return readFixed(word.front(), word.substr(2));
    return readSlot(word);
}

std::string describeOscItems()
{
    return "a slot type, alone or with a name behind a colon (Vec3f:position); an argument that the message has (i:3, "
           "h:3, f:0.5, d:0.5, s:text, s:\"a text\", T, F, N or I); of messages that come in _ for one that is not "
           "looked at, _[] for all that are left. Slot types are " +
           typeNames();
}

} // namespace Trovio::Nodes
