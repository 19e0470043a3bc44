#include "osg/LogText.h"

#include <algorithm>
#include <array>

namespace osg {

namespace {

// First byte, what the second byte may be, length: the well-formed sequences, without surrogates and overlong forms.
struct Utf8Row {
    unsigned char _first, _last, _secondLow, _secondHigh;
    std::size_t _length;
};
constexpr Utf8Row utf8Rows[] = {{0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
                                {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

// UTF-8 of one length sorts as the characters do.
struct Range {
    std::string_view _first, _last;
};
constexpr std::array<Range, 7> controls{{{std::string_view("\0", 1), "\x1F"},
                                         {"\x7F", "\x7F"},
                                         {"\xC2\x80", "\xC2\x9F"},
                                         {"\xD8\x9C", "\xD8\x9C"},
                                         {"\xE2\x80\x8E", "\xE2\x80\x8F"},
                                         {"\xE2\x80\xA8", "\xE2\x80\xAE"},
                                         {"\xE2\x81\xA6", "\xE2\x81\xA9"}}};

bool within(char byte, unsigned char low, unsigned char high)
{
    const auto value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

void appendCode(std::string& out, char byte)
{
    static constexpr std::string_view digits = "0123456789abcdef", named = "\n\r\t", letters = "nrt";
    const auto value = static_cast<unsigned char>(byte);
    if (const std::size_t at = named.find(byte); at != std::string_view::npos)
        out += {'\\', letters[at]};
    else
        out += {'\\', 'x', digits[value >> 4U], digits[value & 0xFU]};
}

} // namespace

std::size_t utf8Length(std::string_view text)
{
    for (const auto& row : utf8Rows) {
        if (text.empty() || !within(text[0], row._first, row._last))
            continue;
        if (text.size() < row._length || (row._length > 1 && !within(text[1], row._secondLow, row._secondHigh)))
            return 0;
        const std::string_view rest = text.substr(0, row._length).substr(std::min<std::size_t>(2, row._length));
        return std::ranges::all_of(rest, [](char byte) { return within(byte, 0x80, 0xBF); }) ? row._length : 0;
    }
    return 0;
}

bool isControl(std::string_view character)
{
    return std::ranges::any_of(controls, [character](const Range& range) {
        return range._first.size() == character.size() && range._first <= character && character <= range._last;
    });
}

std::string escapeControls(std::string_view text, std::size_t limit)
{
    std::string result;
    result.reserve(std::min(text.size(), limit));
    while (!text.empty()) {
        if (result.size() >= limit)
            return result + "…";
        const std::size_t length = utf8Length(text);
        const std::string_view character = text.substr(0, std::max<std::size_t>(length, 1));
        if (length != 0 && !isControl(character))
            result += character;
        else
            for (const char byte : character)
                appendCode(result, byte);
        text.remove_prefix(character.size());
    }
    return result;
}

} // namespace osg
