#include "scene/check/SceneWarnings.h"

#include "explain/RouteEnds.h"
#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "scene/check/RouteCheck.h"
#include "scene/check/SensorReach.h"
#include "scene/file/SceneMemory.h"
#include "scene/parts/SceneParts.h"

#include <algorithm>
#include <map>
#include <set>

namespace Scenes {

using namespace Explain;

namespace {
constexpr std::size_t maxReason = 1000;
} // namespace

void SceneWarnings::tell(Position position, bool isError, const std::string& text)
{
    _tell({_scene._path, position._line, position._column, isError, text});
}

void SceneWarnings::check(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped)
{
    checkParts(graph);
    checkRoutes(graph, root, stopped);
}

void SceneWarnings::checkParts(const SceneGraph& graph)
{
    for (const GraphFault& fault : graph.faults())
        if (fault._scene == &_scene)
            tell(fault._position, !fault._fromOutside, escaped(fault._text, maxReason));
    const auto bridges = std::ranges::count_if(
        _scene._handlers, [](const HandlerEntry& handler) { return handler._kind._value == bridgeKind; });
    const bool hasLabels =
        std::ranges::any_of(_scene._sensors, [](const SensorEntry& sensor) { return !sensor._label._value.empty(); });
    if (bridges == 0 && hasLabels)
        note({}, "the scene has no handler of kind " + inQuotes(std::string(bridgeKind)) +
                     ", without which no sensor has a slot");
    for (const HandlerEntry& handler : _scene._handlers)
        if (isKnownKind(handler._kind._value) && handler._kind._value != bridgeKind &&
            handler._nodes.size() + handler._routes.size() > 0)
            note(handler._kind._position, "a handler of kind " + inQuotes(handler._kind._value) +
                                              " feeds nothing; its nodes and routes are not used");
    if (bridges > 1)
        note({}, "the scene has " + std::to_string(bridges) + " Trovio handlers; each of them serves every sensor");
    for (const SensorEntry& sensor : _scene._sensors)
        if (sensor._label._value.empty())
            note(sensor._name._position,
                 "sensor " + inQuotes(sensor._name._value) + " has no label, so nothing can reach it");
    if (const auto pinned = pinnedBy(_scene))
        note(pinned->_position, pinned->_text);
}

void SceneWarnings::checkRoutes(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped)
{
    const auto checkAll = [&](const std::vector<LocatedPair>& routes, RouteCheck&& check) {
        for (const LocatedPair& route : routes)
            if (!stopped())
                check.check(route, [this](Position position, const std::string& text) { note(position, text); });
    };
    checkAll(_scene._routes, RouteCheck(graph, {}, root));
    for (const Trovio::NamespaceInfo& child : root._children) {
        const GraphHandler* const handler = graph.handlerAt(child._label);
        if (!handler || handler->_scene != &_scene)
            continue;
        checkAll(handler->_entry->_routes, RouteCheck(graph, child._label, child));
        checkRivals(graph, root, child);
    }
    checkSensors(graph, root, stopped);
}

// What is wrong with a route that names a sensor is said of the route.
void SceneWarnings::checkSensors(const SceneGraph& graph, const Trovio::NamespaceInfo& root, const Stopped& stopped)
{
    std::vector<std::string> spaces;
    for (const GraphHandler& handler : graph.handlers())
        if (handler._scene == &_scene && !handler._label.empty())
            spaces.push_back(handler._label);
    const std::set<std::string> ends = endsOfRoutes(root), linked = linkTargets(_scene);
    const std::vector<Trovio::Pattern> targets = graph.openTargets(root);
    const auto isReached = [&](const std::string& path) {
        return ends.contains(path) ||
               std::ranges::any_of(targets, [&](const auto& target) { return target.match(path).has_value(); });
    };
    for (const SensorEntry& sensor : _scene._sensors) {
        const std::string& label = sensor._label._value;
        if (stopped() || spaces.empty() || label.empty() ||
            std::ranges::any_of(spaces, [&](const auto& space) { return isReached(pathBelow(space, label)); }))
            continue;
        if (const std::string why = whyUnreached(sensor, linked); !why.empty())
            note(sensor._label._position,
                 "sensor " + inQuotes(sensor._name._value) + " (label " + inQuotes(label) + ")" + why);
    }
}

// Several that write into a sensor without a buffer overwrite each other within a frame.
void SceneWarnings::checkRivals(const SceneGraph& graph, const Trovio::NamespaceInfo& root,
                                const Trovio::NamespaceInfo& space)
{
    std::map<std::string, std::set<std::string>> writers; // labels in the root, by the sensor's label in the handler
    const auto collect = [&](const std::string& path, const Trovio::NamespaceInfo& info) {
        const std::string before = path.empty() ? space._label + "/" : std::string();
        for (const Trovio::RouteInfo& route : info._routes)
            for (const Trovio::RoutePair& pair : route._pairs)
                if (pair._reason.empty() && pair._to.starts_with(before))
                    writers[pair._to.substr(before.size())].insert(pathBelow(path, pair._from));
    };
    collect({}, root);
    collect(space._label, space);
    for (const auto& [label, names] : writers) {
        const Explain::ScenePlaces::Sensor* const sensor = graph.places().sensorAt(space._label, label);
        if (names.size() < 2 || !sensor)
            continue;
        const auto entry = std::ranges::find(_scene._sensors, sensor->_name,
                                             [](const SensorEntry& known) { return known._name._value; });
        if (entry == _scene._sensors.end() || entry->_buffer._value > 1)
            continue;
        std::string all;
        for (const std::string& name : names)
            all += (all.empty() ? "" : ", ") + inQuotes(name);
        note(entry->_name._position, "sensor " + inQuotes(sensor->_name) + " keeps the newest value only, and " +
                                         std::to_string(names.size()) +
                                         " write into it, one over the other: " + escaped(all, maxReason) +
                                         "; route only one of them to it, or give it a `buffer`");
    }
}
} // namespace Scenes
