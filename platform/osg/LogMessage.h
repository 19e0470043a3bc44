#pragma once

#include <string>

namespace osg {

/// Where a message comes from. The texts are not copied.
struct LogPlace {
    const char* _module;
    const char* _file; // source unit, without extension
    unsigned _line;
    const char* _function;
};

/// Writes one message when the log's level admits it; level 0 always. The format ends in "\n". Any thread, but not
/// while the log lock is held.
void logMessage(int level, const LogPlace& place, const char* format, ...) __attribute__((format(printf, 3, 4)));

/// The same for what others can cause at will: nodes, the host, the framework. No more than so many a second of each
/// source (see LogLimit), then a line that says how many were held back; levels 0 and 1 always get through.
void logLimited(int level, const LogPlace& place, const char* format, ...) __attribute__((format(printf, 3, 4)));

/// A place in the source: where its current() is called, also as a default argument. (clang 14 has no source_location.)
struct SourcePlace {
    const char* _file; // its path
    unsigned _line;
    const char* _function;

    static constexpr SourcePlace current(const char* file = __builtin_FILE(), unsigned line = __builtin_LINE(),
                                         const char* function = __builtin_FUNCTION())
    {
        return {file, line, function};
    }
};

/// Writes a text as one line with logLimited(). It comes from the unit that is called like the file of `where`, in that
/// folder, such as "nodes/Worker". Needs no memory of its own.
void logText(int level, const char* module, const char* folder, const std::string& text,
             const SourcePlace& where) noexcept;

/// Writes those lines whose second is over, at the end all of them. logLimited() does it by itself, but only when
/// something is logged: call it now and then, and last.
void logHeldBack(bool atEnd = false);

/// In seconds; the clock that logLimited() goes by.
using LogClock = double (*)();
/// For tests that move time by hand. Returns the clock before; null means the steady clock of the system.
LogClock setLogClock(LogClock clock);

} // namespace osg
