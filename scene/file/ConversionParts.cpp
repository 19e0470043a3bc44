#include "scene/file/ConversionParts.h"

#include <algorithm>

namespace Scenes {
namespace {

constexpr std::string_view blanks = " \t\r\n";

/// The ends of the parts of a text between bars that stand outside quotes.
std::vector<std::size_t> endsOfParts(std::string_view text)
{
    std::vector<std::size_t> ends;
    char quote = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (quote != 0 && text[i] == '\\')
            ++i;
        else if (quote != 0)
            quote = text[i] == quote ? '\0' : quote;
        else if (text[i] == '\'' || text[i] == '"')
            quote = text[i];
        else if (text[i] == '|')
            ends.push_back(i);
    }
    ends.push_back(text.size());
    return ends;
}
} // namespace

std::vector<ConversionPart> conversionParts(std::string_view text)
{
    const auto skip = [text](std::size_t at) { return std::min(text.find_first_not_of(blanks, at), text.size()); };
    std::vector<ConversionPart> parts;
    std::size_t begin = 0;
    for (const std::size_t end : endsOfParts(text)) {
        const std::size_t node = std::min(skip(begin), end);
        const std::size_t nodeEnd = std::min(text.find_first_of(blanks, node), end);
        const std::size_t settings = std::min(skip(nodeEnd), end);
        parts.push_back({text.substr(node, nodeEnd - node), node, text.substr(settings, end - settings),
                         settings == end ? node : settings});
        begin = end + 1;
    }
    return parts;
}
} // namespace Scenes
