#include "explain/text/TextWrap.h"

#include "explain/text/DisplayWidth.h"

#include <algorithm>

namespace Explain {
namespace {

// Bytes of the first line; the blank that it is broken at comes behind it.
std::size_t lineEnd(std::string_view text, std::size_t width)
{
    const std::size_t room = std::max(bytesWithin(text, width), firstCharacter(text)); // a line holds something
    if (room == text.size())
        return room;
    const std::size_t clause = text.substr(0, room + 1).rfind("; ");
    if (clause != std::string_view::npos && clause >= room / 2)
        return clause + 1;
    const std::size_t blank = text.substr(0, room + 1).rfind(' ');
    return blank == std::string_view::npos || blank == 0 ? room : blank;
}
} // namespace

std::string fitted(std::string_view text, std::size_t width)
{
    const std::size_t columns = displayWidth(text);
    if (columns <= width)
        return std::string(text) + std::string(width - columns, ' ');
    if (width == 0)
        return {};
    const std::string_view kept = text.substr(0, bytesWithin(text, width - 1));
    return std::string(kept) + "…" + std::string(width - 1 - displayWidth(kept), ' '); // half a wide character's room
}

std::vector<std::string> wrapped(std::string_view text, std::size_t width, std::size_t indent)
{
    std::vector<std::string> lines;
    do {
        const std::size_t start = lines.empty() || width <= indent ? 0 : indent;
        const std::size_t end = lineEnd(text, std::max<std::size_t>(width - start, 1));
        lines.push_back(std::string(start, ' ') + std::string(text.substr(0, end)));
        text.remove_prefix(end);
        text.remove_prefix(text.starts_with(' ') ? 1 : 0);
    } while (!text.empty());
    return lines;
}
} // namespace Explain
