#include "host/SceneNotes.h"

#include "host/Escape.h"
#include "host/Failure.h"
#include "host/NearestName.h"
#include "host/SceneURL.h"
#include "sensorManager/SensorHandlerType.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"

#include <algorithm>

namespace Host {
namespace {
constexpr std::size_t longestReason = 400;
}

void SceneNotes::note(Position position, const std::string& text)
{
    ++_notes;
    std::string place = escaped(_scene._path);
    if (position._line != 0)
        place += ":" + std::to_string(position._line) + ":" + std::to_string(position._column);
    std::fprintf(stderr, "%s: note: %s\n", place.c_str(), text.c_str());
}

void SceneNotes::checkParts()
{
    for (const HandlerEntry& handler : _scene._handlers)
        checkHandler(handler);
    if (_trovioHandlers > 1)
        note({},
             "the scene has " + std::to_string(_trovioHandlers) + " Trovio handlers; each of them serves every sensor");
    for (const SensorEntry& sensor : _scene._sensors)
        if (sensor._label._value.empty())
            note(sensor._name._position,
                 "sensor " + inQuotes(sensor._name._value) + " has no label, so nothing can reach it");
}

void SceneNotes::checkHandler(const HandlerEntry& handler)
{
    constexpr std::string_view kinds[] = {"Trovio", "OT", "ORDAN", "TORVA"};
    const std::string& kind = handler._kind._value;
    if (Ostrel::SensorHandlerType::find(kind) == nullptr)
        note(handler._kind._position,
             "unknown handler kind " + inQuotes(kind) + "; allowed: " + listed(kinds) + nearestHint(kind, kinds));
    if (kind != kinds[0])
        return;
    ++_trovioHandlers;
    for (const LocatedPair& node : handler._nodes)
        checkNode(node, sceneURL(handler._url._value, _scene._path));
}

// A node that stands nowhere opens nothing, but it knows its settings.
void SceneNotes::checkNode(const LocatedPair& node, const Merid::URL& baseURL)
{
    std::unique_ptr<Trovio::Node> made;
    if (const auto failure = failureOf([&] { made = Trovio::NodeType::newInstance(node._first._value); }))
        return note(node._first._position, escaped(*failure, longestReason));
    made->setBaseURL(baseURL);
    if (const auto failure = failureOf([&] { made->setFieldValues(node._second._value); }))
        note(node._second._position, escaped(*failure, longestReason));
}

void SceneNotes::checkRoutes(const SceneGraph& graph, const Trovio::NamespaceInfo& root)
{
    for (const LocatedPair& route : _scene._routes)
        checkRoute(route, root);
    for (const Trovio::NamespaceInfo& child : root._children) {
        const GraphHandler* const handler = graph.handlerAt(child._label);
        if (handler && handler->_scene == &_scene)
            for (const LocatedPair& route : handler->_entry->_routes)
                checkRoute(route, child);
    }
}

// An end that is missing may still come, with a node that makes its slots as it runs.
void SceneNotes::checkRoute(const LocatedPair& route, const Trovio::NamespaceInfo& info)
{
    const auto found = std::ranges::find_if(info._routes, [&route](const Trovio::RouteInfo& known) {
        return known._from == route._first._value && known._to == route._second._value;
    });
    if (found == info._routes.end())
        return;
    for (const Trovio::RoutePair& pair : found->_pairs)
        if (!pair._reason.empty() &&
            std::ranges::find(info._slots, pair._to, &Trovio::SlotInfo::_label) != info._slots.end())
            note(route._first._position, inQuotes(pair._from) + " and " + inQuotes(pair._to) +
                                             " stay apart: " + escaped(pair._reason, longestReason));
}

void SceneNotes::printSum(std::FILE* out) const
{
    std::size_t routes = _scene._routes.size();
    for (const HandlerEntry& handler : _scene._handlers)
        routes += handler._routes.size();
    std::fprintf(out, "%s: good: sensors %zu, handlers %zu, routes %zu, links %zu, notes %zu\n",
                 escaped(_scene._path).c_str(), _scene._sensors.size(), _scene._handlers.size(), routes,
                 _scene._links.size(), _notes);
}
} // namespace Host
