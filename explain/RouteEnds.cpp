#include "explain/RouteEnds.h"

#include "explain/TreeWalk.h"

namespace Explain {

std::set<std::string> endsOfRoutes(const Trovio::NamespaceInfo& root)
{
    std::set<std::string> ends = endsApart(root);
    walkTree(root, [&ends](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::RouteInfo& route : info._routes)
            for (const Trovio::RoutePair& pair : route._pairs)
                ends.insert({pathBelow(path, pair._from), pathBelow(path, pair._to)});
    });
    return ends;
}

std::set<std::string> endsApart(const Trovio::NamespaceInfo& root)
{
    std::set<std::string> ends;
    walkTree(root, [&ends](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::RouteInfo& route : info._routes) {
            if (route.isPending())
                ends.insert({pathBelow(path, route._from), pathBelow(path, route._to)});
            for (const Trovio::RoutePair& pair : route._pairs)
                if (!pair._reason.empty())
                    ends.insert({pathBelow(path, pair._from), pathBelow(path, pair._to)});
        }
    });
    return ends;
}

std::set<std::string> connectedSlots(const Trovio::NamespaceInfo& root)
{
    std::set<std::string> paths;
    walkTree(root, [&paths](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::SlotInfo& slot : info._slots)
            if (slot._active)
                paths.insert(pathBelow(path, slot._label));
    });
    return paths;
}
} // namespace Explain
