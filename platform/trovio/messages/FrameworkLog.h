#pragma once

#include "osg/LogMessage.h"
#include "osg/LogRecord.h"

namespace Trovio {

/// Writes one line, with module "Trovio" and the place of the caller, if the log's level admits it.
/// Any thread, under any lock but the log's. Needs no memory of its own.
inline void logMessage(osg::LogLevel level, const std::string& text,
                       const osg::SourcePlace& where = osg::SourcePlace::current()) noexcept
{
    osg::logText(level, "Trovio", "trovio", text, where);
}

} // namespace Trovio
