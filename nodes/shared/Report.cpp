#include "nodes/shared/Report.h"

#include "osg/LogMessage.h"
#include <filesystem>

namespace Trovio::Nodes {

void report(osg::LogLevel level, const std::string& text, const Place& where)
{
    const std::string file = "nodes/" + std::filesystem::path(where._file).stem().string();
    osg::logLimited(level, {"Trovio", file.c_str(), where._line, where._function}, "%s\n", text.c_str());
}

} // namespace Trovio::Nodes
