#pragma once

#include "trovio/Inspection.h"

#include <string>

namespace Explain {

/// "a/b", or "b" at the top.
inline std::string pathBelow(const std::string& path, const std::string& label)
{
    return path.empty() ? label : path + "/" + label;
}

/// Calls visit(path, namespace) for a namespace and all below it, parents first. The path of the first is empty.
template <class Visit>
void walkTree(const Trovio::NamespaceInfo& info, const Visit& visit, const std::string& path = {})
{
    visit(path, info);
    for (const Trovio::NamespaceInfo& child : info._children)
        walkTree(child, visit, pathBelow(path, child._label));
}

inline const char* directionOf(const Trovio::SlotInfo& slot)
{
    return slot._direction == Trovio::Slot::Direction::Out ? "out" : "in";
}
} // namespace Explain
