#include "nodes/guard/GuardValue.h"

#include <sstream>

namespace Trovio::Nodes {

SharedVector<std::string> GuardValue<SharedVector<std::string>>::read(const Settings& settings)
{
    std::istringstream text(settings.text("value"));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return share(lines);
}

} // namespace Trovio::Nodes
