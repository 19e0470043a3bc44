#include "scene/file/TextPlaces.h"

#include <algorithm>

namespace Scenes {

namespace {

bool beginsCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
}
} // namespace

TextPlaces::TextPlaces(std::string_view source) : _source(source), _lines{0}
{
    for (std::size_t at = source.find('\n'); at != std::string_view::npos; at = source.find('\n', at + 1))
        _lines.push_back(at + 1);
}

// Columns count characters.
std::string_view TextPlaces::sourceAt(Position position) const
{
    if (position._line == 0 || position._line > _lines.size())
        return {};
    std::size_t at = _lines[position._line - 1];
    for (unsigned column = 0; at < _source.size(); ++at)
        if (beginsCharacter(_source[at]) && ++column == position._column)
            break;
    return _source.substr(at);
}

Position TextPlaces::placeIn(const LocatedText& text, std::size_t offset) const
{
    std::string_view rest = sourceAt(text._position);
    Position place = text._position;
    const bool isLong = rest.starts_with(R"(""")") || rest.starts_with("'''");
    const std::size_t quotes = isLong ? 3 : 1;
    rest.remove_prefix(std::min(quotes, rest.size()));
    place._column += static_cast<unsigned>(quotes);
    if (isLong && rest.starts_with('\n')) { // which is no part of the text
        rest.remove_prefix(1);
        place = {place._line + 1, 1};
    }
    const std::string_view before = std::string_view(text._value).substr(0, offset);
    if (!rest.starts_with(before))
        return text._position;
    for (const char byte : before) {
        if (byte == '\n')
            place = {place._line + 1, 1};
        else if (beginsCharacter(byte))
            ++place._column;
    }
    return place;
}
} // namespace Scenes
