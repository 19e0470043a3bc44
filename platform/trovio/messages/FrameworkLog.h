#pragma once

#include <string>

namespace Trovio {

/// The levels of the log that the framework writes at.
enum class LogLevel : int { Always = 0, Fatal = 1, Warning = 2, Notice = 3 };

/// Writes one line, with module "Trovio" and the place of the caller, if the log's level admits it.
/// Any thread, under any lock but the log's. Needs no memory of its own.
void logMessage(LogLevel level, const std::string& text, const char* file = __builtin_FILE(),
                unsigned line = __builtin_LINE(), const char* function = __builtin_FUNCTION()) noexcept;

} // namespace Trovio
