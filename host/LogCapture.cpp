#include "host/LogCapture.h"

#include "osg/LogText.h"

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace Host {
namespace {
constexpr std::size_t mostKept = 1u << 16; // bytes; a flood of messages fills no memory
}

LogCapture::LogCapture()
{
    osg::doInitLog();
    std::string ignored;
    if (const char* parts = std::getenv("OSG_LOG_HEADER"))
        _header.select(parts, ignored);
    if (std::getenv("OSG_LOG_FILE") == nullptr)
        _previous = osg::osgLogP->setHook([this](const osg::LogRecord& record) { return !keep(record); });
}

LogCapture::~LogCapture()
{
    if (std::getenv("OSG_LOG_FILE") == nullptr)
        osg::osgLogP->setHook(std::move(_previous));
    std::fputs(take().c_str(), stderr);
}

// Informational lines are left to the log, which knows whether they are wanted.
bool LogCapture::keep(const osg::LogRecord& record)
{
    if (record._level == osg::LogAlways)
        return false;
    std::string_view text = record._text;
    if (text.ends_with('\n'))
        text.remove_suffix(1);
    const std::string line = _header.text(record) + osg::escapeControls(text) + "\n";
    const std::lock_guard guard(_lock);
    if (_lines.size() + line.size() <= mostKept)
        _lines += line;
    return true;
}

std::string LogCapture::take()
{
    const std::lock_guard guard(_lock);
    return std::exchange(_lines, {});
}
} // namespace Host
