#include "explain/GraphEdges.h"

#include "explain/TreeWalk.h"

namespace Explain {
namespace {

using Trovio::NamespaceInfo;
using Direction = Trovio::Slot::Direction;

GraphEdge::End endOf(const std::string& path, const NamespaceInfo& info, const std::string& label, Direction direction)
{
    const Trovio::SlotInfo* found = nullptr;
    for (const Trovio::SlotInfo& slot : info._slots)
        if (slot._label == label && (!found || slot._direction == direction))
            found = &slot;
    return {pathBelow(path, found ? found->_home : label), label, found != nullptr};
}
} // namespace

std::vector<GraphEdge> graphEdges(const NamespaceInfo& root)
{
    std::vector<GraphEdge> edges;
    walkTree(root, [&edges](const std::string& path, const NamespaceInfo& info) {
        const auto add = [&](const std::string& from, const std::string& to, const std::string& reason) {
            edges.push_back({endOf(path, info, from, Direction::Out), endOf(path, info, to, Direction::In), reason});
        };
        for (const Trovio::RouteInfo& route : info._routes) {
            for (const Trovio::RoutePair& pair : route._pairs)
                add(pair._from, pair._to, pair._reason);
            if (route._pairs.empty())
                add(route._from, route._to, route._reason);
        }
    });
    return edges;
}
} // namespace Explain
