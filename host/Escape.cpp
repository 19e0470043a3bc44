#include "host/Escape.h"

namespace Host {
namespace {

constexpr std::size_t messageLimit = 60;

// First byte, what the second byte may be, length: the well-formed sequences, without surrogates and overlong forms.
struct Utf8Row {
    unsigned char _first, _last, _secondLow, _secondHigh;
    std::size_t _length;
};
constexpr Utf8Row utf8Rows[] = {{0x00, 0x7F, 0x00, 0x00, 1}, {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                {0xE1, 0xEC, 0x80, 0xBF, 3}, {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3},
                                {0xF0, 0xF0, 0x90, 0xBF, 4}, {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4}};

bool within(char byte, unsigned char low, unsigned char high)
{
    const auto value = static_cast<unsigned char>(byte);
    return low <= value && value <= high;
}

// C0, DEL, and C1, which a terminal may obey even when they come as UTF-8.
bool isControl(std::string_view character)
{
    const auto first = static_cast<unsigned char>(character[0]);
    return first < 0x20 || first == 0x7F || (first == 0xC2 && within(character[1], 0x80, 0x9F));
}

void appendCode(std::string& out, char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    if (byte == '\n' || byte == '\t') {
        out += byte == '\n' ? "\\n" : "\\t";
        return;
    }
    out += "\\x";
    out += digits[value >> 4];
    out += digits[value & 15];
}
} // namespace

std::size_t utf8Length(std::string_view text)
{
    for (const auto& row : utf8Rows) {
        if (text.empty() || !within(text[0], row._first, row._last))
            continue;
        if (text.size() < row._length || (row._length > 1 && !within(text[1], row._secondLow, row._secondHigh)))
            return 0;
        for (std::size_t i = 2; i < row._length; ++i)
            if (!within(text[i], 0x80, 0xBF))
                return 0;
        return row._length;
    }
    return 0;
}

std::string escaped(std::string_view text, std::size_t limit)
{
    std::string out;
    while (!text.empty()) {
        if (out.size() >= limit)
            return out + "…";
        const std::size_t length = utf8Length(text);
        const std::string_view character = text.substr(0, length == 0 ? 1 : length);
        if (length != 0 && !isControl(character))
            out += character;
        else
            for (const char byte : character)
                appendCode(out, byte);
        text.remove_prefix(character.size());
    }
    return out;
}

std::string inQuotes(std::string_view text)
{
    return "'" + escaped(text, messageLimit) + "'";
}

std::size_t displayWidth(std::string_view text)
{
    std::size_t width = 0;
    for (const char byte : text)
        width += within(byte, 0x80, 0xBF) ? 0 : 1;
    return width;
}
} // namespace Host
