#include "osg/LogMessage.h"

#include "osg/Log.h"
#include <cstdarg>

namespace osg {

void logMessage(int level, const LogPlace& place, const char* format, ...)
{
    if (!osgLogP)
        doInitLog();
    if (osgLogP->getLogLevel() < level)
        return;
    osgStartLog(true, level, place._module, place._file, place._line, place._function);
    std::va_list arguments;
    va_start(arguments, format);
    osgLogP->doLogV(format, arguments);
    va_end(arguments);
    Log::_pLogLock->release();
}

} // namespace osg
