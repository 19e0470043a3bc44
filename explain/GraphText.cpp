#include "explain/Graph.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"

#include <algorithm>

namespace Explain {
namespace {

using Trovio::NamespaceInfo;
using Trovio::RouteInfo;
using Trovio::SlotInfo;

constexpr std::size_t maxReason = 1000;

// "handler 'devices' (Trovio), in the root as 'Context'", or the node's type.
std::string titleOf(const ScenePlaces& places, const std::string& path, const NamespaceInfo& info)
{
    if (info._node)
        return "node " + inQuotes(path) + " (" + info._node->_typeName + (info._node->_relays ? "), passes on" : ")");
    if (const ScenePlaces::Handler* const handler = places.handlerAt(path))
        return "handler " + inQuotes(handler->_name) + " (" + handler->_kind + "), in the root as " + inQuotes(path);
    return path.empty() ? "root" : "namespace " + inQuotes(path);
}

std::string slotText(const ScenePlaces& places, const std::string& path, const SlotInfo& slot)
{
    const ScenePlaces::Sensor* const sensor = places.sensorAt(path, slot._label);
    return "    " + std::string(directionOf(slot)) + "-slot " + inQuotes(slot._label) + " " + slot._typeName +
           (sensor ? ", sensor " + inQuotes(sensor->_name) : "") + "\n";
}

// With what keeps single pairs apart where others are connected.
std::string routeText(const RouteInfo& route)
{
    std::string text = "    route " + inQuotes(route._from) + " -> " + inQuotes(route._to) + ": ";
    if (route.isPending())
        return text + "pending, " + escaped(route._reason, maxReason) + "\n";
    text += "connects " + std::to_string(route._connections) + "\n";
    for (const Trovio::RoutePair& pair : route._pairs)
        if (!pair._reason.empty())
            text += "        not " + inQuotes(pair._from) + " -> " + inQuotes(pair._to) + ": " +
                    escaped(pair._reason, maxReason) + "\n";
    return text;
}

std::string textOf(const ScenePlaces& places, const std::string& path, const NamespaceInfo& info)
{
    std::string text;
    for (const SlotInfo& slot : info._slots)
        if (slot._own)
            text += slotText(places, path, slot);
    for (const RouteInfo& route : info._routes)
        text += routeText(route);
    // Of the root only its routes are worth a word.
    return text.empty() && path.empty() ? text : titleOf(places, path, info) + "\n" + text;
}
} // namespace

std::string graphText(const NamespaceInfo& root, const ScenePlaces& places)
{
    std::string text;
    walkTree(root, [&](const std::string& path, const NamespaceInfo& info) { text += textOf(places, path, info); });
    for (const ScenePlaces::Handler& handler : places._handlers)
        if (handler._path.empty())
            text += "handler " + inQuotes(handler._name) + " (" + handler._kind + "), without namespace\n";
    for (const ScenePlaces::Link& link : places._links)
        text += "link " + inQuotes(link._from) + " -> " + inQuotes(link._to) + "\n";
    return text;
}

const ScenePlaces::Handler* ScenePlaces::handlerAt(const std::string& path) const
{
    const auto found = std::ranges::find(_handlers, path, &Handler::_path);
    return path.empty() || found == _handlers.end() ? nullptr : &*found;
}

const ScenePlaces::Sensor* ScenePlaces::sensorAt(const std::string& path, const std::string& label) const
{
    const auto found = _sensors.find({path, label});
    return found == _sensors.end() ? nullptr : &found->second;
}
} // namespace Explain
