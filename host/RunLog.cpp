#include "host/RunLog.h"

#include "osg/LogMessage.h"
#include "osg/LogText.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace Host {
namespace {

constexpr std::size_t mostHeld = 1u << 16; // bytes; a flood of messages fills no memory
constexpr std::string_view nodeModule = "Trovio";

/// Empty where the environment does not say.
std::string valueOf(const char* variable)
{
    const char* value = std::getenv(variable);
    return value ? value : "";
}
} // namespace

RunLog::RunLog(bool verbose) : _verbose(verbose), _toFile(!valueOf("OSG_LOG_FILE").empty())
{
    osg::doInitLog();
    std::string ignored; // the log has complained of it already
    if (const std::string header = valueOf("OSG_LOG_HEADER"); !header.empty())
        _header.select(header, ignored);
    osg::osgLogP->setInfoShown(verbose);
    _previous = osg::osgLogP->setHook([this](const osg::LogRecord& record) { return hear(record); });
}

RunLog::~RunLog()
{
    osg::logHeldBack(true);
    osg::osgLogP->setHook(std::move(_previous));
    osg::osgLogP->setInfoShown(true);
    hold(false);
}

// Returns whether the log shall write the line as well.
bool RunLog::hear(const osg::LogRecord& record)
{
    const bool info = record._level == osg::LogAlways;
    const bool notice = info && !_verbose && record._module == nodeModule;
    const bool silent = !notice && (_toFile || (info && !_verbose)); // nothing for standard error
    std::string_view text = record._text;
    if (text.ends_with('\n'))
        text.remove_suffix(1);
    const std::string line = (notice ? "" : _header.text(record)) + osg::escapeControls(text) + "\n";

    const std::lock_guard guard(_lock);
    if (notice && !_held)
        std::fputs(line.c_str(), stderr);
    if (silent || !_held)
        return true;
    if (_lines.size() + line.size() <= mostHeld)
        _lines += line;
    else
        ++_left;
    return _toFile || notice;
}

void RunLog::hold(bool held)
{
    const std::lock_guard guard(_lock);
    _held = held;
    if (!held)
        std::fputs(takeLocked().c_str(), stderr);
}

std::string RunLog::take()
{
    const std::lock_guard guard(_lock);
    return takeLocked();
}

std::string RunLog::takeLocked()
{
    std::string lines = std::exchange(_lines, {});
    if (_left > 0)
        lines += "and " + std::to_string(std::exchange(_left, 0U)) + " more lines of log\n";
    return lines;
}
} // namespace Host
