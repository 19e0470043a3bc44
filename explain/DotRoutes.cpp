#include "explain/DotRoutes.h"

#include "explain/TreeWalk.h"

namespace Explain {
namespace {

using Trovio::NamespaceInfo;
using Trovio::SlotInfo;
using Direction = Trovio::Slot::Direction;

// The slot with the label; where there is none, a box that stands for what is missing.
std::string endOf(DotText& dot, const std::string& path, const NamespaceInfo& info, const std::string& label,
                  Direction direction)
{
    const SlotInfo* found = nullptr;
    for (const SlotInfo& slot : info._slots)
        if (slot._label == label && (!found || slot._direction == direction))
            found = &slot;
    if (found)
        return dotName(path, *found);
    const std::string name = DotText::quoted("missing " + pathBelow(path, label));
    dot.line(name + " [label=" + DotText::quoted(label + " ?") + ", style=dashed, color=red, fontcolor=red];");
    return name;
}

void writePair(DotText& dot, const std::string& path, const NamespaceInfo& info, const Trovio::RoutePair& pair)
{
    const std::string from = endOf(dot, path, info, pair._from, Direction::Out);
    const std::string to = endOf(dot, path, info, pair._to, Direction::In);
    const std::string style = " [style=dashed, color=red, tooltip=" + DotText::quoted(pair._reason) + "];";
    dot.line(from + " -> " + to + (pair._reason.empty() ? ";" : style));
}
} // namespace

std::string dotName(const std::string& path, const SlotInfo& slot)
{
    return DotText::quoted(pathBelow(path, slot._home));
}

void writeDotRoutes(DotText& dot, const std::string& path, const NamespaceInfo& info)
{
    for (const Trovio::RouteInfo& route : info._routes) {
        for (const Trovio::RoutePair& pair : route._pairs)
            writePair(dot, path, info, pair);
        if (route._pairs.empty())
            writePair(dot, path, info, {route._from, route._to, route._reason});
    }
}
} // namespace Explain
