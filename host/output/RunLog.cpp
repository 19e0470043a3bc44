#include "host/output/RunLog.h"

#include "host/output/RunOutput.h"
#include "osg/LogMessage.h"
#include "osg/LogText.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace Host {
namespace {

constexpr std::size_t maxHeld = 1u << 16; // bytes; a flood of messages fills no memory
constexpr std::string_view nodeModule = "Trovio";

std::atomic<RunLog*> current;

/// Empty where the environment does not say.
std::string valueOf(const char* variable)
{
    const char* value = std::getenv(variable);
    return value ? value : "";
}
} // namespace

RunLog::RunLog(bool verbose, RunOutput* output)
    : _verbose(verbose),
      _output(output),
      _toFile(output != nullptr ? output->logFile() != nullptr : !valueOf("OSG_LOG_FILE").empty())
{
    osg::doInitLog();
    std::string ignored; // the log has complained of it already
    if (const std::string header = valueOf("OSG_LOG_HEADER"); !header.empty())
        _header.select(header, ignored);
    osg::osgLogP->setInfoShown(verbose);
    _previous = osg::osgLogP->setHook([this](const osg::LogRecord& record) { return hear(record); });
    current = this;
}

RunLog::~RunLog()
{
    current = nullptr;
    osg::logHeldBack(true);
    osg::osgLogP->setHook(std::move(_previous));
    osg::osgLogP->setInfoShown(true);
    hold(false);
}

// Returns whether the log shall write the line to its file.
bool RunLog::hear(const osg::LogRecord& record)
{
    const bool info = record._level == osg::LogAlways;
    const bool notice = info && !_verbose && record._module == nodeModule;
    std::string_view text = record._text;
    if (text.ends_with('\n'))
        text.remove_suffix(1);
    const std::string shown = osg::escapeControls(text) + "\n", line = _header.text(record) + shown;
    if (_toFile && _output != nullptr)
        putToFile(line);

    const std::lock_guard guard(_lock);
    if (notice)
        show(shown);
    else if (!_toFile && (!info || _verbose))
        show(line);
    return _toFile && _output == nullptr;
}

void RunLog::putToFile(const std::string& line)
{
    if (_output->logFile()->put(line) || _output->logFile()->state() == QueuedOutput::State::Open)
        return;
    _toFile = false; // so this line is shown, like all that follow
    const std::lock_guard guard(_lock);
    show(_output->logFileFailure());
}

void RunLog::show(const std::string& lines)
{
    if (!_held)
        _output != nullptr ? static_cast<void>(_output->messages().put(lines))
                           : static_cast<void>(std::fputs(lines.c_str(), stderr));
    else if (_lines.size() + lines.size() <= maxHeld)
        _lines += lines;
    else
        ++_left;
}

void RunLog::hold(bool held)
{
    const std::lock_guard guard(_lock);
    _held = held;
    if (!held)
        show(takeLocked());
}

std::string RunLog::take()
{
    const std::lock_guard guard(_lock);
    return takeLocked();
}

void RunLog::discard()
{
    osg::logHeldBack(true);
    take();
}

void RunLog::writeHeld() noexcept
{
    RunLog* const log = current;
    pollfd ready{STDERR_FILENO, POLLOUT, 0}; // a reader that stopped must not hold up the end
    if (!log || ::poll(&ready, 1, 0) <= 0 || !log->_lock.try_lock())
        return;
    [[maybe_unused]] const auto written = ::write(STDERR_FILENO, log->_lines.data(), log->_lines.size());
    log->_lock.unlock();
}

std::string RunLog::takeLocked()
{
    std::string lines = std::exchange(_lines, {});
    if (_left > 0)
        lines += "and " + std::to_string(std::exchange(_left, 0U)) + " more lines of log\n";
    return lines;
}
} // namespace Host
