#pragma once

#include <string_view>

namespace osg {

/// Severities of the log; a message of level n is written when the log's level is at least n.
enum LogLevel : int {
    LogAlways = 0, // written whatever the level
    LogFatal = 1,  // a severity only, nothing aborts
    LogWarning = 2,
    LogNotice = 3,
    LogInfo = 4,
    LogDebug = 5,
};

/// One message on its way out. The texts are valid only during the call that hands the record over.
/// A line of a plain stream has empty texts and line 0; only its level and text are filled.
struct LogRecord {
    int _level = LogAlways;
    const char* _module = "";
    const char* _file = "";
    unsigned _line = 0;
    const char* _function = "";
    std::string_view _text = {}; // as formatted, with its final line end and with nothing escaped
};

} // namespace osg
