#include "explain/TreeReport.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"

namespace Explain {
namespace {

std::string where(const std::string& path)
{
    return path.empty() ? "in the root" : "in " + inQuotes(path);
}

void sayApart(const std::string& path, const std::string& from, const std::string& to, const std::string& reason,
              const Say& say)
{
    say("route from " + inQuotes(from) + " to " + inQuotes(to) + " " + where(path) +
        " is not connected: " + escaped(reason));
}

void reportRoute(const std::string& path, const Trovio::RouteInfo& route, const Say& say)
{
    if (route.isPending())
        return sayApart(path, route._from, route._to, route._reason, say);
    for (const Trovio::RoutePair& pair : route._pairs)
        if (!pair._reason.empty())
            sayApart(path, pair._from, pair._to, pair._reason, say);
}
} // namespace

void reportRoutes(const Trovio::NamespaceInfo& root, const Say& say)
{
    walkTree(root, [&say](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::RouteInfo& route : info._routes)
            reportRoute(path, route, say);
    });
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
} // namespace Explain
