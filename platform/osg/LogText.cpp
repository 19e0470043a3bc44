#include "osg/LogText.h"

#include <cstddef>

namespace osg {

namespace {

bool isControl(std::string_view text, std::size_t at)
{
    const auto byte = static_cast<unsigned char>(text[at]);
    if (byte < 0x20 || byte == 0x7F)
        return true;
    // U+0080 to U+009F are C2 80 to C2 9F.
    return byte == 0xC2 && at + 1 < text.size() && (static_cast<unsigned char>(text[at + 1]) & 0xE0U) == 0x80;
}

std::string escaped(char character)
{
    static constexpr std::string_view digits = "0123456789abcdef";
    switch (character) {
    case '\n':
        return "\\n";
    case '\r':
        return "\\r";
    case '\t':
        return "\\t";
    default:
        const auto byte = static_cast<unsigned char>(character);
        return {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
}

} // namespace

std::string escapeControls(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (!isControl(text, i)) {
            result += text[i];
            continue;
        }
        result += escaped(text[i]);
        if (static_cast<unsigned char>(text[i]) == 0xC2)
            result += escaped(text[++i]);
    }
    return result;
}

} // namespace osg
