#include "explain/GraphEdges.h"

#include "explain/TreeWalk.h"

#include <map>
#include <string_view>

namespace Explain {
namespace {

using Trovio::NamespaceInfo;
using Direction = Trovio::Slot::Direction;
using Slots = std::multimap<std::string_view, const Trovio::SlotInfo*>; // by label

Slots slotsOf(const NamespaceInfo& info)
{
    Slots slots;
    for (const Trovio::SlotInfo& slot : info._slots)
        slots.emplace(slot._label, &slot);
    return slots;
}

GraphEdge::End endOf(const std::string& path, const Slots& slots, const std::string& label, Direction direction)
{
    const Trovio::SlotInfo* found = nullptr;
    for (auto [slot, end] = slots.equal_range(label); slot != end; ++slot)
        if (!found || slot->second->_direction == direction)
            found = slot->second;
    return {pathBelow(path, found ? found->_home : label), label, found != nullptr};
}
} // namespace

std::vector<GraphEdge> graphEdges(const NamespaceInfo& root)
{
    std::vector<GraphEdge> edges;
    walkTree(root, [&edges](const std::string& path, const NamespaceInfo& info) {
        const Slots slots = info._routes.empty() ? Slots() : slotsOf(info);
        const auto add = [&](const std::string& from, const std::string& to, const std::string& reason) {
            edges.push_back({endOf(path, slots, from, Direction::Out), endOf(path, slots, to, Direction::In), reason});
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
