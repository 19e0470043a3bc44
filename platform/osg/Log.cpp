#include "osg/Log.h"

#include "osg/LogFile.h"
#include "osg/LogText.h"
#include "osg/PipeSignalGuard.h"
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <unistd.h>
#include <utility>

namespace osg {

namespace {

Lock logLock;

// Never destroyed: what other libraries do while they are unloaded is still logged.
Log* theLog()
{
    static Log* const log = new Log;
    return log;
}

/// What the format makes of its arguments, at any length.
std::string formatted(const char* format, std::va_list arguments) __attribute__((format(printf, 1, 0)));

std::string formatted(const char* format, std::va_list arguments)
{
    std::va_list again;
    va_copy(again, arguments);
    const int size = std::vsnprintf(nullptr, 0, format, arguments);
    std::string text;
    if (size >= 0) {
        text.resize(static_cast<std::size_t>(size));
        std::vsnprintf(text.data(), text.size() + 1, format, again);
    } else {
        text = "(a message that cannot be formatted) " + std::string(format);
    }
    va_end(again);
    return text;
}

bool endsLine(std::string_view text)
{
    return !text.empty() && text.back() == '\n';
}

std::string withoutLineEnd(std::string_view text)
{
    if (endsLine(text))
        text.remove_suffix(1);
    return std::string(text);
}

} // namespace

Lock* Log::_pLogLock = &logLock;
Log* osgLogP = theLog();

void doInitLog()
{
    if (!osgLogP)
        osgLogP = theLog();
}

void osgStartLog(bool lock, int level, const char* module, const char* file, unsigned line,
                 const char* function) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    if (lock)
        Log::_pLogLock->acquire();
    const auto text = [](const char* given) { return given ? given : ""; };
    osgLogP->startLog({level, text(module), text(file), line, text(function), {}});
}

Log::Log()
{
    readEnvironment();
}

void Log::readEnvironment()
{
    std::string problem;
    const auto refuse = [&problem](const char* variable) {
        std::fprintf(stderr, "WARNING: %s ignored: %s\n", variable, escapeControls(problem).c_str());
    };
    if (const char* level = std::getenv("OSG_LOG_LEVEL")) {
        const bool oneDigit = level[0] != '\0' && level[1] == '\0';
        if (!oneDigit || !setLogLevel(level[0] - '0')) {
            problem = "level '" + std::string(level) + "'; allowed are 0 to 5";
            refuse("OSG_LOG_LEVEL");
        }
    }
    if (const char* file = std::getenv("OSG_LOG_FILE"); file && !setLogFile(file, problem))
        refuse("OSG_LOG_FILE");
    if (const char* header = std::getenv("OSG_LOG_HEADER"); header && !setHeader(header, problem))
        refuse("OSG_LOG_HEADER");
    if (const char* rate = std::getenv("OSG_LOG_RATE"); rate && !readRate(rate, problem))
        refuse("OSG_LOG_RATE");
}

bool Log::readRate(std::string_view text, std::string& problem)
{
    constexpr unsigned maxRate = 1'000'000;
    unsigned rate = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), rate);
    if (error != std::errc() || end != text.data() + text.size() || rate > maxRate) {
        problem = "rate '" + std::string(text) + "'; allowed are 0 (no limit) to " + std::to_string(maxRate);
        return false;
    }
    _limit.setRate(rate);
    return true;
}

bool Log::setLogLevel(int level)
{
    if (level < 0 || level >= _levels)
        return false;
    _level.store(level, std::memory_order_relaxed);
    return true;
}

bool Log::checkModule(const char* module) const
{
    const Ostrel::LockGuard guard(_moduleLock);
    return !module || !_muted.contains(module);
}

void Log::muteModule(const std::string& module, bool muted)
{
    const Ostrel::LockGuard guard(_moduleLock);
    if (muted)
        _muted.insert(module);
    else
        _muted.erase(module);
}

bool Log::setLogFile(const std::string& path, std::string& problem)
{
    std::unique_ptr<std::FILE, CloseFile> file;
    if (!path.empty()) {
        const int descriptor = openLogFile(path, problem);
        if (descriptor < 0)
            return false;
        file.reset(::fdopen(descriptor, "a"));
        if (!file) {
            problem = "cannot open log file '" + path + "': " + std::strerror(errno);
            ::close(descriptor);
            return false;
        }
    }
    _pLogLock->acquire();
    _file.swap(file);
    _pLogLock->release();
    return true;
}

bool Log::setHeader(std::string_view parts, std::string& problem)
{
    _pLogLock->acquire();
    const bool taken = _header.select(parts, problem);
    _pLogLock->release();
    return taken;
}

void Log::setInfoShown(bool shown)
{
    _pLogLock->acquire();
    _infoShown = shown;
    _pLogLock->release();
}

Log::Hook Log::setHook(Hook hook)
{
    _pLogLock->acquire();
    _hook.swap(hook);
    _pLogLock->release();
    return hook;
}

void Log::startLog(const LogRecord& header)
{
    _current = header;
}

void Log::doLog(const char* format, ...) noexcept
{
    std::va_list arguments;
    va_start(arguments, format);
    doLogV(format, arguments);
    va_end(arguments);
}

void Log::doLogV(const char* format, std::va_list arguments) noexcept
{
    LogRecord record = std::exchange(_current, LogRecord{});
    if (!isSeen(record._level))
        return;
    std::va_list again;
    va_copy(again, arguments);
    try {
        const std::string text = formatted(format, arguments);
        record._text = text;
        // A line end that came in with an argument does not end the line, it is escaped.
        emit(record, endsLine(format) ? withoutLineEnd(text) : text);
    } catch (...) {
        writeShort(format, again);
    }
    va_end(again);
}

void Log::writeShort(const char* format, std::va_list arguments) noexcept
{
    const PipeSignalGuard guard;
    char line[256];
    std::vsnprintf(line, sizeof line, format, arguments);
    std::replace_if(
        line, line + std::strlen(line), [](unsigned char character) { return character < ' ' || character == 0x7f; },
        ' ');
    std::fprintf(_file ? _file.get() : stderr, "%s(no memory for more of this message)\n", line);
}

void Log::writeStreamLine(int level, std::string_view line)
{
    LogRecord record;
    record._level = level;
    record._text = line;
    emit(record, withoutLineEnd(line));
}

std::ostream& Log::stream(int level)
{
    if (level < 0 || level >= _levels || level > getLogLevel())
        return _nil;
    auto& stream = _streams[static_cast<std::size_t>(level)];
    if (!stream)
        stream = std::make_unique<LineStream>([this, level](std::string_view line) { writeStreamLine(level, line); });
    return *stream;
}

bool Log::isSeen(int level) const
{
    return _hook || _file || level != LogAlways || _infoShown;
}

void Log::emit(const LogRecord& record, std::string_view line)
{
    if (_hook && !_hook(record))
        return;
    write(record, escapeControls(_header.text(record) + std::string(line)) + "\n");
}

void Log::write(const LogRecord& record, const std::string& line)
{
    const PipeSignalGuard guard;
    const auto put = [&line](std::FILE* file) {
        return std::fwrite(line.data(), 1, line.size(), file) == line.size() && std::fflush(file) == 0;
    };
    if (_file) {
        if (put(_file.get()))
            return;
        std::fprintf(stderr, "WARNING: the log file cannot be written (%s); the log goes on here\n",
                     std::strerror(errno));
        _file.reset();
    }
    if (record._level != LogAlways || _infoShown)
        put(stderr);
}

} // namespace osg
