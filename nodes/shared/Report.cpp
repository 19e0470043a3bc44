#include "nodes/shared/Report.h"

#include "osg/LogMessage.h"
#include <filesystem>

namespace Trovio::Nodes {

void report(osg::LogLevel level, const std::string& text, const std::source_location& where)
{
    const std::string file = "nodes/" + std::filesystem::path(where.file_name()).stem().string();
    osg::logMessage(level, {"Trovio", file.c_str(), where.line(), where.function_name()}, "%s\n", text.c_str());
}

} // namespace Trovio::Nodes
