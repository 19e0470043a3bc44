#pragma once

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

} // namespace osg
