#pragma once

#include "osg/LineStream.h"
#include "osg/Lock.h"
#include "osg/LogHeader.h"
#include "osg/LogLimit.h"
#include "osg/LogRecord.h"
#include <array>
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <functional>
#include <memory>
#include <ostream>
#include <set>
#include <string>

namespace osg {

/// The log of the process, for all threads. One message is: osgStartLog() takes the lock and sets the header, doLog()
/// writes the text, _pLogLock->release() ends it. It starts with what OSG_LOG_LEVEL (0 to 5, default 2), OSG_LOG_FILE
/// (appended to; default standard error), OSG_LOG_HEADER (see LogHeader) and OSG_LOG_RATE (see LogLimit) say when the
/// library is loaded. Ownership: the only log is *osgLogP, which lives as long as the process, so that unload-time code
/// can log.
class Log {
public:
    /// Sees each message before it is written; returns whether it is to be written as well. Runs under the log lock
    /// and must not throw.
    using Hook = std::function<bool(const LogRecord&)>;

    /// Held for one message. Never null.
    static Lock* _pLogLock;

    Log();
    Log(const Log&) = delete;
    Log& operator=(const Log&) = delete;

    /// Any thread, without the lock.
    int getLogLevel() const { return _level.load(std::memory_order_relaxed); }
    /// False, and no change, outside 0 to 5.
    bool setLogLevel(int level);

    /// Whether plain-stream lines of this module are wanted. All modules are accepted until they are muted. Messages
    /// with a header are not asked: they have a level. Any thread.
    bool checkModule(const char* module) const OSTREL_EXCLUDES(_moduleLock);
    void muteModule(const std::string& module, bool muted) OSTREL_EXCLUDES(_moduleLock);

    /// Appends to this file from now on; an empty path means standard error. False, with the reason in `problem` and no
    /// change, when the file cannot be opened (see openLogFile). One that cannot be written, such as a pipe whose
    /// reader has stopped, is left, and standard error gets the lines.
    bool setLogFile(const std::string& path, std::string& problem) OSTREL_EXCLUDES(_pLogLock);
    /// See LogHeader::select().
    bool setHeader(std::string_view parts, std::string& problem) OSTREL_EXCLUDES(_pLogLock);
    /// Whether lines of level 0 are written to standard error, too (they are at first); a log file always gets them.
    void setInfoShown(bool shown) OSTREL_EXCLUDES(_pLogLock);
    /// Puts the hook in place of the one before and returns that one; an empty one ends it.
    Hook setHook(Hook hook) OSTREL_EXCLUDES(_pLogLock);

    /// What logLimited() goes by. Any thread.
    LogLimit& limit() { return _limit; }

    /// Sets the header of the next message. The texts must stay until doLog() has run.
    void startLog(const LogRecord& header) OSTREL_REQUIRES(_pLogLock);
    /// Writes one line of any length under the header that was set. The final line end belongs to the format; control
    /// characters in the rest are escaped on the way out, but not for the hook. Where memory is out, or the hook
    /// throws after all, the line comes without its header, cut to what fits on the stack.
    void doLog(const char* format, ...) noexcept __attribute__((format(printf, 2, 3))) OSTREL_REQUIRES(_pLogLock);
    void doLogV(const char* format, std::va_list arguments) noexcept __attribute__((format(printf, 2, 0)))
    OSTREL_REQUIRES(_pLogLock);

    /// A stream for lines without header. Level 0 is always written, others as the level of the log admits.
    std::ostream& stream(int level) OSTREL_REQUIRES(_pLogLock);
    /// Swallows everything.
    std::ostream& nilStream() OSTREL_REQUIRES(_pLogLock) { return _nil; }

private:
    struct CloseFile {
        void operator()(std::FILE* file) const { std::fclose(file); }
    };
    static constexpr int _levels = LogDebug + 1;

    void readEnvironment();
    bool readRate(std::string_view text, std::string& problem);
    // Only called by the streams, whose users hold the log lock.
    void writeStreamLine(int level, std::string_view line) OSTREL_NO_THREAD_SAFETY_ANALYSIS;
    /// Whether anybody gets a message of that level: thousands of slots may each write one when a scene ends.
    bool isSeen(int level) const OSTREL_REQUIRES(_pLogLock);
    void emit(const LogRecord& record, std::string_view line) OSTREL_REQUIRES(_pLogLock);
    void write(const LogRecord& record, const std::string& line) OSTREL_REQUIRES(_pLogLock);
    void writeShort(const char* format, std::va_list arguments) noexcept __attribute__((format(printf, 2, 0)))
    OSTREL_REQUIRES(_pLogLock);

    std::atomic<int> _level{LogWarning};
    LogLimit _limit;

    mutable Ostrel::Mutex _moduleLock{Ostrel::LockRank::Leaf};
    std::set<std::string, std::less<>> _muted OSTREL_GUARDED_BY(_moduleLock);

    Hook _hook OSTREL_GUARDED_BY(_pLogLock);
    LogHeader _header OSTREL_GUARDED_BY(_pLogLock);
    LogRecord _current OSTREL_GUARDED_BY(_pLogLock);                          // what startLog() set, for one doLog()
    std::unique_ptr<std::FILE, CloseFile> _file OSTREL_GUARDED_BY(_pLogLock); // null: standard error
    bool _infoShown OSTREL_GUARDED_BY(_pLogLock) = true;
    std::array<std::unique_ptr<LineStream>, _levels> _streams OSTREL_GUARDED_BY(_pLogLock);
    std::ostream _nil OSTREL_GUARDED_BY(_pLogLock){nullptr};
};

/// Set while the library is loaded, before any thread can log.
extern Log* osgLogP;

/// Makes sure that osgLogP is set. Any thread.
void doInitLog();

/// Takes the log lock (unless `lock` is false: then the caller holds it) and sets the header of the message that
/// follows. The caller releases _pLogLock when the message is written.
void osgStartLog(bool lock, int level, const char* module, const char* file, unsigned line, const char* function)
    OSTREL_ACQUIRE(Log::_pLogLock);

} // namespace osg
