#include "host/GraphForms.h"

#include "host/Escape.h"
#include "host/JsonText.h"
#include "host/TreeWalk.h"

#include <nlohmann/json.hpp>

namespace Host {
namespace {

using Json = nlohmann::ordered_json;
using Trovio::NamespaceInfo;
using Trovio::RouteInfo;
using Trovio::SlotInfo;

const char* directionOf(const SlotInfo& slot)
{
    return slot._direction == Trovio::Slot::Direction::Out ? "out" : "in";
}

// "handler 'devices' (Trovio), in the root as Context", or the node's type.
std::string titleOf(const SceneGraph& graph, const std::string& path, const NamespaceInfo& info)
{
    if (info._node)
        return "node " + inQuotes(path) + " (" + info._node->_typeName + (info._node->_relays ? "), passes on" : ")");
    for (const GraphHandler& handler : graph.handlers())
        if (!path.empty() && handler._label == path)
            return "handler " + inQuotes(handler._name) + " (" + handler._kind + "), in the root as " + inQuotes(path);
    return "root";
}

std::string stateOf(const RouteInfo& route)
{
    if (!route.isPending())
        return "connects " + std::to_string(route._connections);
    return "pending, " + route._reason;
}

std::string textOf(const SceneGraph& graph, const std::string& path, const NamespaceInfo& info)
{
    std::string text;
    for (const SlotInfo& slot : info._slots) {
        if (!slot._own)
            continue;
        const std::string sensor = info._node ? std::string() : graph.sensorOf(slot._label);
        text += "    " + std::string(directionOf(slot)) + "-slot " + inQuotes(slot._label) + " " + slot._typeName +
                (sensor.empty() ? "" : ", sensor " + inQuotes(sensor)) + "\n";
    }
    for (const RouteInfo& route : info._routes)
        text += "    route " + inQuotes(route._from) + " -> " + inQuotes(route._to) + ": " +
                escaped(stateOf(route), 1000) + "\n";
    // Of the root only its routes are worth a word.
    return text.empty() && path.empty() ? text : titleOf(graph, path, info) + "\n" + text;
}

Json jsonOf(const SceneGraph& graph, const NamespaceInfo& info, const std::string& path)
{
    Json object{{"label", info._label}};
    if (info._node)
        object.update({{"type", info._node->_typeName}, {"passesOn", info._node->_relays}});
    Json slots = Json::array(), routes = Json::array(), children = Json::array();
    for (const SlotInfo& slot : info._slots) {
        if (!slot._own)
            continue;
        slots.push_back({{"label", slot._label}, {"direction", directionOf(slot)}, {"type", slot._typeName}});
        if (const std::string sensor = graph.sensorOf(slot._label); !info._node && !sensor.empty())
            slots.back()["sensor"] = sensor;
    }
    for (const RouteInfo& route : info._routes) {
        routes.push_back({{"from", route._from},
                          {"to", route._to},
                          {"connections", route._connections},
                          {"pending", route.isPending()},
                          {"reason", route._reason}});
    }
    for (const NamespaceInfo& child : info._children)
        children.push_back(jsonOf(graph, child, pathBelow(path, child._label)));
    object.update({{"slots", slots}, {"routes", routes}, {"namespaces", children}});
    return object;
}
} // namespace

std::string graphText(const SceneGraph& graph)
{
    std::string text;
    walkTree(graph.inspect(),
             [&](const std::string& path, const NamespaceInfo& info) { text += textOf(graph, path, info); });
    for (const GraphHandler& handler : graph.handlers())
        if (handler._label.empty())
            text += "handler " + inQuotes(handler._name) + " (" + handler._kind + "), without namespace\n";
    for (const SceneGraph::Link& link : graph.links())
        text += "link " + inQuotes(link._from) + " -> " + inQuotes(link._to) + "\n";
    return text;
}

std::string graphJson(const SceneGraph& graph)
{
    Json handlers = Json::array();
    for (const GraphHandler& handler : graph.handlers())
        handlers.push_back({{"name", handler._name}, {"kind", handler._kind}, {"namespace", handler._label}});
    Json links = Json::array();
    for (const SceneGraph::Link& link : graph.links())
        links.push_back({{"from", link._from}, {"to", link._to}});
    const Json object{{"handlers", handlers}, {"root", jsonOf(graph, graph.inspect(), {})}, {"links", links}};
    return jsonText(object, 2) + "\n";
}
} // namespace Host
