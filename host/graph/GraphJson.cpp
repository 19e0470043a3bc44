#include "explain/TreeWalk.h"
#include "explain/text/JsonText.h"
#include "host/graph/GraphForms.h"

#include <nlohmann/json.hpp>

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Json = nlohmann::ordered_json;
using Trovio::NamespaceInfo;

Json routeJson(const Trovio::RouteInfo& route)
{
    Json pairs = Json::array();
    for (const Trovio::RoutePair& pair : route._pairs)
        pairs.push_back({{"from", pair._from}, {"to", pair._to}, {"reason", pair._reason}});
    return {{"from", route._from},          {"to", route._to},         {"connections", route._connections},
            {"pending", route.isPending()}, {"reason", route._reason}, {"pairs", pairs}};
}

Json jsonOf(const SceneGraph& graph, const NamespaceInfo& info, const std::string& path)
{
    Json object{{"label", info._label}};
    if (info._node)
        object.update({{"type", info._node->_typeName}, {"passesOn", info._node->_relays}});
    Json slots = Json::array(), routes = Json::array(), children = Json::array();
    for (const Trovio::SlotInfo& slot : info._slots) {
        if (!slot._own)
            continue;
        slots.push_back({{"label", slot._label}, {"direction", directionOf(slot)}, {"type", slot._typeName}});
        if (const GraphSensor* const sensor = graph.sensorAt(path, slot._label))
            slots.back()["sensor"] = sensor->_name;
    }
    for (const Trovio::RouteInfo& route : info._routes)
        routes.push_back(routeJson(route));
    for (const NamespaceInfo& child : info._children)
        children.push_back(jsonOf(graph, child, pathBelow(path, child._label)));
    object.update({{"slots", slots}, {"routes", routes}, {"namespaces", children}});
    return object;
}
} // namespace

std::string graphJson(const SceneGraph& graph)
{
    Json handlers = Json::array();
    for (const GraphHandler& handler : graph.handlers())
        handlers.push_back({{"scene", handler._scene->_path},
                            {"name", handler._entry->_name._value},
                            {"kind", handler._entry->_kind._value},
                            {"namespace", handler._label}});
    Json links = Json::array();
    for (const SceneGraph::Link& link : graph.links())
        links.push_back({{"scene", link._scene->_path}, {"from", link._from}, {"to", link._to}});
    const Json object{{"handlers", handlers}, {"root", jsonOf(graph, graph.inspect(), {})}, {"links", links}};
    return jsonText(object, 2) + "\n";
}
} // namespace Host
