#include "host/report/TreeReport.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

std::string where(const std::string& path)
{
    return path.empty() ? "in the root" : "in " + inQuotes(path);
}

void reportRoute(const std::string& path, const Trovio::RouteInfo& route, const Say& say)
{
    if (route.isPending())
        return say("route from " + inQuotes(route._from) + " to " + inQuotes(route._to) + " " + where(path) +
                   " met nobody: " + escaped(route._reason));
    for (const Trovio::RoutePair& pair : route._pairs)
        if (!pair._reason.empty())
            say("route from " + inQuotes(pair._from) + " to " + inQuotes(pair._to) + " " + where(path) +
                " is not connected: " + escaped(pair._reason));
}
} // namespace

void reportRoutes(const Trovio::NamespaceInfo& root, const Say& say)
{
    walkTree(root, [&say](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::RouteInfo& route : info._routes)
            reportRoute(path, route, say);
    });
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

void reportNodes(const Trovio::NamespaceInfo& root, const Say& say)
{
    walkTree(root, [&say](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (!info._node)
            return;
        say("node " + inQuotes(path) + " (" + info._node->_typeName +
            "): " + escaped(info._node->_state.describe(Trovio::Time::getCurrentTime()), 600));
    });
}

void reportCounters(const Trovio::NamespaceInfo& root, const Say& say)
{
    walkTree(root, [&say](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (!info._node || info._node->_counters.empty())
            return;
        std::string line;
        for (const Trovio::CounterInfo& counter : info._node->_counters)
            line += (line.empty() ? "" : ", ") + counter._name + " " + std::to_string(counter._value);
        say("node " + inQuotes(path) + " (" + info._node->_typeName + "): " + line);
    });
}

void reportRemarks(const Trovio::NamespaceInfo& root, const Say& say)
{
    walkTree(root, [&say](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (!info._node)
            return;
        for (const Trovio::RemarkInfo& remark : info._node->_remarks)
            say("slot " + inQuotes(pathBelow(path, remark._slot)) + ": " + escaped(remark._text));
    });
}
} // namespace Host
