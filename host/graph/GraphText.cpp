#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "host/graph/GraphForms.h"

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Trovio::NamespaceInfo;
using Trovio::RouteInfo;
using Trovio::SlotInfo;

constexpr std::size_t longestReason = 1000;

// "handler 'devices' (Trovio), in the root as Context", or the node's type.
std::string titleOf(const SceneGraph& graph, const std::string& path, const NamespaceInfo& info)
{
    if (info._node)
        return "node " + inQuotes(path) + " (" + info._node->_typeName + (info._node->_relays ? "), passes on" : ")");
    const GraphHandler* const handler = graph.handlerAt(path);
    return handler ? "handler " + inQuotes(handler->_entry->_name._value) + " (" + handler->_entry->_kind._value +
                         "), in the root as " + inQuotes(path)
                   : "root";
}

std::string slotText(const SceneGraph& graph, const std::string& path, const SlotInfo& slot)
{
    const GraphSensor* const sensor = graph.sensorAt(path, slot._label);
    return "    " + std::string(directionOf(slot)) + "-slot " + inQuotes(slot._label) + " " + slot._typeName +
           (sensor ? ", sensor " + inQuotes(sensor->_name) : "") + "\n";
}

// With what keeps single pairs apart where others are connected.
std::string routeText(const RouteInfo& route)
{
    std::string text = "    route " + inQuotes(route._from) + " -> " + inQuotes(route._to) + ": ";
    if (route.isPending())
        return text + "pending, " + escaped(route._reason, longestReason) + "\n";
    text += "connects " + std::to_string(route._connections) + "\n";
    for (const Trovio::RoutePair& pair : route._pairs)
        if (!pair._reason.empty())
            text += "        not " + inQuotes(pair._from) + " -> " + inQuotes(pair._to) + ": " +
                    escaped(pair._reason, longestReason) + "\n";
    return text;
}

std::string textOf(const SceneGraph& graph, const std::string& path, const NamespaceInfo& info)
{
    std::string text;
    for (const SlotInfo& slot : info._slots)
        if (slot._own)
            text += slotText(graph, path, slot);
    for (const RouteInfo& route : info._routes)
        text += routeText(route);
    // Of the root only its routes are worth a word.
    return text.empty() && path.empty() ? text : titleOf(graph, path, info) + "\n" + text;
}
} // namespace

std::string graphText(const SceneGraph& graph)
{
    std::string text;
    walkTree(graph.inspect(),
             [&](const std::string& path, const NamespaceInfo& info) { text += textOf(graph, path, info); });
    for (const GraphHandler& handler : graph.handlers())
        if (handler._label.empty())
            text += "handler " + inQuotes(handler._entry->_name._value) + " (" + handler._entry->_kind._value +
                    "), without namespace\n";
    for (const SceneGraph::Link& link : graph.links())
        text += "link " + inQuotes(link._from) + " -> " + inQuotes(link._to) + "\n";
    return text;
}
} // namespace Host
