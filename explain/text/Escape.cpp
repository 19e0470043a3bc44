#include "explain/text/Escape.h"

#include "osg/LogText.h"
#include <algorithm>

namespace Explain {
namespace {
constexpr std::size_t messageLimit = 60;
} // namespace

std::string escaped(std::string_view text, std::size_t limit)
{
    return osg::escapeControls(text, limit);
}

std::string inQuotes(std::string_view text)
{
    return "'" + escaped(text, messageLimit) + "'";
}

std::size_t displayWidth(std::string_view text)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80; }));
}
} // namespace Explain
