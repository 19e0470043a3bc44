#include "explain/text/Escape.h"

#include "osg/LogText.h"

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
} // namespace Explain
