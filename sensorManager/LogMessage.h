#pragma once

#include "osg/Log.h"
#include "ostrel/LogModuleName.h"

namespace Ostrel {

/// Where a message comes from, as its header shows it. File texts have no extension.
struct LogOrigin {
    const char* file;
    unsigned int line;
    const char* function;
};

/// The levels of the log that this library writes at.
enum class LogLevel : int {
    Always = osg::LogAlways, // written without a look at the log's level
    Fatal = osg::LogFatal,   // misuse and inconsistent state; nothing ends because of it
    Warning = osg::LogWarning,
};

/// Holds the log for one message, if the log's level admits it. The one shape in which this library writes.
/// To the compiler's analysis it always holds the lock: nothing is written without it.
class OSTREL_SCOPED_CAPABILITY LogMessage {
public:
    LogMessage(LogLevel level, const LogOrigin& origin)
        OSTREL_ACQUIRE(osg::Log::_pLogLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        if (!osg::osgLogP)
            osg::doInitLog();
        if (level != LogLevel::Always && osg::osgLogP->getLogLevel() < static_cast<int>(level))
            return;
        osg::osgStartLog(true, static_cast<int>(level), LogModuleName, origin.file, origin.line, origin.function);
        _isWritten = true;
    }
    ~LogMessage() OSTREL_RELEASE() OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        if (_isWritten)
            osg::Log::_pLogLock->release();
    }
    LogMessage(const LogMessage&) = delete;
    LogMessage& operator=(const LogMessage&) = delete;

    bool isWritten() const { return _isWritten; }

private:
    bool _isWritten = false;
};

} // namespace Ostrel

// Macros, so that the compiler checks the format and knows the calling function.
#define OSTREL_LOG_FROM(level, origin, ...)                                                                            \
    do {                                                                                                               \
        const ::Ostrel::LogMessage ostrelLogMessage(level, origin);                                                    \
        if (ostrelLogMessage.isWritten())                                                                              \
            osg::osgLogP->doLog(__VA_ARGS__);                                                                          \
    } while (false)

#define OSTREL_LOG(level, file, ...)                                                                                   \
    OSTREL_LOG_FROM(level, (::Ostrel::LogOrigin{file, __LINE__, __PRETTY_FUNCTION__}), __VA_ARGS__)
