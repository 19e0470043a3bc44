#include "trovio/FrameworkLog.h"

#include "osg/LogMessage.h"
#include <filesystem>

namespace Trovio {

void logMessage(LogLevel level, const std::string& text, const char* file, unsigned line, const char* function)
{
    const std::string place = "trovio/" + std::filesystem::path(file).stem().string();
    osg::logLimited(static_cast<int>(level), {"Trovio", place.c_str(), line, function}, "%s\n", text.c_str());
}

} // namespace Trovio
