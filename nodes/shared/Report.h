#pragma once

#include "osg/LogMessage.h"
#include "osg/LogRecord.h"

namespace Trovio::Nodes {

/// Writes one line, with module "Trovio" and the caller's place, if the log's level admits it. Not under the log lock.
inline void report(osg::LogLevel level, const std::string& text,
                   const osg::SourcePlace& where = osg::SourcePlace::current())
{
    osg::logText(level, "Trovio", "nodes", text, where);
}

} // namespace Trovio::Nodes
