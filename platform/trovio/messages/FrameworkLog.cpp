#include "trovio/messages/FrameworkLog.h"

#include "osg/LogMessage.h"
#include <cstdio>
#include <string_view>

namespace Trovio {

void logMessage(LogLevel level, const std::string& text, const char* file, unsigned line, const char* function) noexcept
{
    std::string_view unit(file);
    unit.remove_prefix(unit.find_last_of('/') + 1); // 0 where there is none
    unit = unit.substr(0, unit.find_last_of('.'));
    char place[64];
    std::snprintf(place, sizeof place, "trovio/%.*s", static_cast<int>(unit.size()), unit.data());
    osg::logLimited(static_cast<int>(level), {"Trovio", place, line, function}, "%s\n", text.c_str());
}

} // namespace Trovio
