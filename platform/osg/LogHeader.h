#pragma once

#include "osg/LogRecord.h"
#include <string>

namespace osg {

/// Which parts stand before the text of a message: any of time, level, module, file, line and function.
class LogHeader {
public:
    /// Level, module, file and line.
    LogHeader();

    /// Takes a list such as "time,level,file", or "all", or "none". Changes nothing and returns false when a name is
    /// unknown; `problem` then says which one and what is allowed.
    bool select(std::string_view parts, std::string& problem);

    /// The header with ": " behind it; empty when no part is selected or the record comes from a plain stream.
    std::string text(const LogRecord& record) const;

private:
    unsigned _parts; // one bit for each part, in the order of the table in the source
};

/// "WARNING" for 2, and so on; "LOG" for a level that has no name.
const char* levelName(int level);

} // namespace osg
