#pragma once

#include "osg/LogRecord.h"
#include <string>

namespace Trovio::Nodes {

/// A place in the source: where its current() is called, also as a default argument. (clang 14 has no source_location.)
struct Place {
    const char* _file;
    unsigned _line;
    const char* _function;

    static constexpr Place current(const char* file = __builtin_FILE(), unsigned line = __builtin_LINE(),
                                   const char* function = __builtin_FUNCTION())
    {
        return {file, line, function};
    }
};

/// Writes one line, with module "Trovio" and the caller's place, if the log's level admits it. Not under the log lock.
void report(osg::LogLevel level, const std::string& text, const Place& where = Place::current());

} // namespace Trovio::Nodes
