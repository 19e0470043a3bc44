#include "trovio/FrameworkLog.h"

#include "osg/Log.h"
#include <filesystem>

namespace Trovio {

void logMessage(LogLevel level, const std::string& text, const std::source_location& where)
{
    if (!osg::osgLogP)
        osg::doInitLog();
    if (osg::osgLogP->getLogLevel() < static_cast<int>(level))
        return;
    const std::string file = "trovio/" + std::filesystem::path(where.file_name()).stem().string();
    osg::osgStartLog(true, static_cast<int>(level), "Trovio", file.c_str(), where.line(), where.function_name());
    osg::osgLogP->doLog("%s\n", text.c_str());
    osg::Log::_pLogLock->release();
}

} // namespace Trovio
