#include "osg/LogMessage.h"

#include "osg/Log.h"
#include <atomic>
#include <chrono>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <limits>
#include <new>
#include <string_view>

namespace osg {

namespace {

double steadySeconds()
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

std::atomic<LogClock> logClock{&steadySeconds};

bool isAdmitted(int level)
{
    if (!osgLogP)
        doInitLog();
    return osgLogP->getLogLevel() >= level;
}

void write(int level, const LogPlace& place, const char* format, std::va_list arguments)
    __attribute__((format(printf, 3, 0)));
void write(int level, const LogPlace& place, const char* format, std::va_list arguments)
{
    osgStartLog(true, level, place._module, place._file, place._line, place._function);
    osgLogP->doLogV(format, arguments);
    Log::_pLogLock->release();
}

/// Whether the source may write now. A limit that has no memory to count lets all through.
bool isInTime(int level, const LogPlace& place) noexcept
{
    try {
        logHeldBack();
        return level <= LogFatal || osgLogP->limit().admit(level, place, logClock.load()());
    } catch (const std::bad_alloc&) {
        return true;
    }
}

} // namespace

void logMessage(int level, const LogPlace& place, const char* format, ...)
{
    if (!isAdmitted(level))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    write(level, place, format, arguments);
    va_end(arguments);
}

void logLimited(int level, const LogPlace& place, const char* format, ...)
{
    if (!isAdmitted(level) || !isInTime(level, place))
        return;
    std::va_list arguments;
    va_start(arguments, format);
    write(level, place, format, arguments);
    va_end(arguments);
}

void logText(int level, const char* module, const char* folder, const std::string& text,
             const SourcePlace& where) noexcept
{
    std::string_view unit(where._file);
    unit.remove_prefix(unit.find_last_of('/') + 1); // 0 where there is none
    unit = unit.substr(0, unit.find_last_of('.'));
    char file[64];
    std::snprintf(file, sizeof file, "%s/%.*s", folder, static_cast<int>(unit.size()), unit.data());
    logLimited(level, {module, file, where._line, where._function}, "%s\n", text.c_str());
}

void logHeldBack(bool atEnd)
{
    if (!osgLogP)
        return;
    const double now = atEnd ? std::numeric_limits<double>::infinity() : logClock.load()();
    for (const LogLimit::Held& held : osgLogP->limit().takeHeld(now))
        logMessage(held._level, {held._module.c_str(), held._file.c_str(), 0, ""},
                   "held back %" PRIu64 " more messages from here; at most %u a second are written (OSG_LOG_RATE)\n",
                   held._count, osgLogP->limit().rate());
}

LogClock setLogClock(LogClock clock)
{
    return logClock.exchange(clock ? clock : &steadySeconds);
}

} // namespace osg
