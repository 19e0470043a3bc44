#include "explain/Graph.h"

#include "explain/TreeWalk.h"
#include "explain/text/JsonText.h"

#include <nlohmann/json.hpp>

namespace Explain {
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

Json jsonOf(const ScenePlaces& places, const NamespaceInfo& info, const std::string& path)
{
    Json object{{"label", info._label}};
    if (info._node)
        object.update({{"type", info._node->_typeName}, {"passesOn", info._node->_relays}});
    Json slots = Json::array(), routes = Json::array(), children = Json::array();
    for (const Trovio::SlotInfo& slot : info._slots) {
        if (!slot._own)
            continue;
        slots.push_back({{"label", slot._label}, {"direction", directionOf(slot)}, {"type", slot._typeName}});
        if (const ScenePlaces::Sensor* const sensor = places.sensorAt(path, slot._label))
            slots.back()["sensor"] = sensor->_name;
    }
    for (const Trovio::RouteInfo& route : info._routes)
        routes.push_back(routeJson(route));
    for (const NamespaceInfo& child : info._children)
        children.push_back(jsonOf(places, child, pathBelow(path, child._label)));
    object.update({{"slots", slots}, {"routes", routes}, {"namespaces", children}});
    return object;
}
} // namespace

std::string graphJson(const NamespaceInfo& root, const ScenePlaces& places)
{
    Json handlers = Json::array();
    for (const ScenePlaces::Handler& handler : places._handlers)
        handlers.push_back({{"scene", places._scenes.at(handler._scene)},
                            {"name", handler._name},
                            {"kind", handler._kind},
                            {"namespace", handler._path}});
    Json links = Json::array();
    for (const ScenePlaces::Link& link : places._links)
        links.push_back({{"scene", places._scenes.at(link._scene)}, {"from", link._from}, {"to", link._to}});
    const Json object{{"handlers", handlers}, {"root", jsonOf(places, root, {})}, {"links", links}};
    return jsonText(object, 2) + "\n";
}
} // namespace Explain
