#pragma once

#include <algorithm>
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// "a, b, c and 2 more": the first few of a list, for a message. What others may have made long is cut at maxLength.
inline std::string shortList(const std::vector<std::string>& parts, std::size_t maxParts, const std::string& separator,
                             std::size_t maxLength = std::string::npos)
{
    std::string list;
    for (std::size_t i = 0; i < std::min(parts.size(), maxParts); ++i)
        list += (i > 0 ? separator : "") + parts[i].substr(0, maxLength);
    return parts.size() > maxParts ? list + " and " + std::to_string(parts.size() - maxParts) + " more" : list;
}

} // namespace Trovio::Nodes
