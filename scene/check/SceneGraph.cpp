#include "scene/check/SceneGraph.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "ostrel/FieldClass.h"
#include "scene/SceneError.h"
#include "scene/file/SceneURL.h"
#include "scene/parts/SceneParts.h"
#include "scene/run/Places.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"

#include <algorithm>
#include <utility>

namespace Scenes {

using namespace Explain;

// In the order of a run: where nodes come after the routes, one that closes a loop of nodes stays apart and says so.
SceneGraph::SceneGraph(const std::vector<SceneFile>& files, const Stopped& stopped)
    : _root(std::make_unique<Trovio::Namespace>())
{
    addHandlers(files, stopped);
    for (const SceneFile& file : files)
        addRoutes(file._routes, *_root, stopped);
    for (const GraphHandler& handler : _handlers)
        if (!handler._label.empty())
            addNodes(handler, stopped);
    addPlaces(files);
}

void SceneGraph::addPlaces(const std::vector<SceneFile>& files)
{
    for (const SceneFile& file : files) {
        std::vector<PlacedHandler> handlers;
        for (const GraphHandler& handler : _handlers)
            if (handler._scene == &file)
                handlers.push_back({handler._entry, handler._label});
        Scenes::addPlaces(file, handlers, _places);
    }
}

// Labels of handlers that cannot be made stay taken until all have theirs.
void SceneGraph::addHandlers(const std::vector<SceneFile>& files, const Stopped& stopped)
{
    std::vector<std::string> kept;
    for (const SceneFile& file : files)
        for (const HandlerEntry& entry : file._handlers) {
            _handlers.push_back(madeHandler(file, entry));
            GraphHandler& handler = _handlers.back();
            if (entry._kind._value == bridgeKind)
                addRoutes(entry._routes, *_root->getNamespace(handler._label), stopped);
            else if (!handler._label.empty())
                kept.push_back(std::exchange(handler._label, {}));
        }
    for (const std::string& label : kept)
        _root->removeNamespace(label);
    _openPlaces = std::move(kept);
}

GraphHandler SceneGraph::madeHandler(const SceneFile& file, const HandlerEntry& entry)
{
    const std::string& kind = entry._kind._value;
    GraphHandler handler{&file, &entry, {}};
    if (const std::string fault = handlerFault(kind); !fault.empty())
        _faults.push_back({&file, entry._kind._position, fault, false});
    if (!takesLabel(kind))
        return handler;
    auto made = std::make_unique<Trovio::Namespace>();
    made->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    handler._label = _root->addNamespace("Context", std::move(made));
    if (kind == bridgeKind)
        for (const SensorEntry& sensor : file._sensors)
            addSensor(handler, sensor);
    return handler;
}

void SceneGraph::addRoutes(const std::vector<LocatedPair>& routes, Trovio::Namespace& space, const Stopped& stopped)
{
    for (const LocatedPair& route : routes)
        if (!stopped())
            space.addRoute(route._first._value, route._second._value);
}

void SceneGraph::addSensor(const GraphHandler& handler, const SensorEntry& entry)
{
    const std::string& label = entry._label._value;
    if (label.empty())
        return;
    Trovio::Namespace& space = *_root->getNamespace(handler._label);
    const int code = Ostrel::FieldClass::find(std::string_view(entry._type._value))->code();
    Ostrel::withFieldType(code, [&]<class Row>(Row) {
        using Value = typename Row::SlotValue;
        if (entry._output._value) {
            auto slot = std::make_unique<Trovio::OutSlot<Value>>(label);
            space.addOutSlot(label, slot.get());
            _slots.push_back(std::move(slot));
        } else {
            auto slot = std::make_unique<Trovio::InSlot<Value>>(label);
            space.addInSlot(label, slot.get());
            _slots.push_back(std::move(slot));
        }
    });
}

void SceneGraph::addNodes(const GraphHandler& handler, const Stopped& stopped)
{
    Trovio::Namespace& space = *_root->getNamespace(handler._label);
    const Merid::URL baseURL = sceneURL(handler._entry->_url._value, handler._scene->_path);
    for (const LabelledNode& node : labelledNodes(*handler._entry)) {
        if (stopped())
            return;
        if (const auto fault = addNode(space, node, baseURL, {}))
            _faults.push_back({handler._scene, fault->_position, fault->_text, fault->_fromOutside});
        noteOpen(space, handler._label, node._label);
    }
}

// A node that makes slots as something comes speaks of them by a pattern of their labels.
void SceneGraph::noteOpen(const Trovio::Namespace& space, const std::string& handler, const std::string& node)
{
    const std::string path = pathBelow(handler, node);
    const Trovio::Namespace* const standing = space.getNamespace(node);
    const auto info = standing ? standing->inspect() : Trovio::NamespaceInfo();
    if (info._slots.empty())
        _openPlaces.push_back(path);
    if (info._node)
        for (const Trovio::RemarkInfo& remark : info._node->_remarks)
            if (remark._slot.find('*') != std::string::npos)
                _openLabels.emplace_back(pathBelow(path, remark._slot));
}

const GraphHandler* SceneGraph::handlerAt(const std::string& path) const
{
    const auto found = std::ranges::find(_handlers, path, &GraphHandler::_label);
    return path.empty() || found == _handlers.end() ? nullptr : &*found;
}

bool SceneGraph::isOpen(const std::string& path, const std::string& pattern) const
{
    const std::size_t star = pattern.find('*');
    const std::string start = pathBelow(path, pattern.substr(0, star)); // all that a pattern is known to begin with
    const bool isPattern = star != std::string::npos;
    const auto isOpenPlace = [&](const std::string& place) {
        const std::string slots = place + "/";
        return start.starts_with(slots) || (isPattern && slots.starts_with(start));
    };
    const auto isOpenLabel = [&](const Trovio::Pattern& label) {
        return isPattern ? label.getText().starts_with(start) : label.match(start).has_value();
    };
    return std::ranges::any_of(_openPlaces, isOpenPlace) || std::ranges::any_of(_openLabels, isOpenLabel);
}

std::vector<Trovio::Pattern> SceneGraph::openTargets(const Trovio::NamespaceInfo& tree) const
{
    std::vector<Trovio::Pattern> targets;
    walkTree(tree, [&](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::RouteInfo& route : info._routes)
            if (route._to.find('*') != std::string::npos && isOpen(path, route._from))
                targets.emplace_back(pathBelow(path, route._to));
    });
    return targets;
}

std::unique_ptr<SceneGraph> connectScenes(const std::vector<SceneFile>& files, const Stopped& stopped)
{
    std::unique_ptr<SceneGraph> graph;
    const auto failure = Explain::failureOf([&] { graph = std::make_unique<SceneGraph>(files, stopped); });
    if (failure)
        throw SceneError("the scenes cannot be connected: " + Explain::escaped(*failure, 1000));
    return graph;
}
} // namespace Scenes
