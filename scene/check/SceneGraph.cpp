#include "scene/check/SceneGraph.h"

#include "explain/TreeWalk.h"
#include "explain/text/Failure.h"
#include "ostrel/FieldClass.h"
#include "scene/file/SceneURL.h"
#include "scene/run/SceneParts.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/OutSlot.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

// In the order of a run: where nodes come after the routes, one that closes a loop of nodes stays apart and says so.
SceneGraph::SceneGraph(const std::vector<SceneFile>& files) : _root(std::make_unique<Trovio::Namespace>())
{
    for (const SceneFile& file : files)
        for (const HandlerEntry& handler : file._handlers)
            _handlers.push_back(madeHandler(file, handler));
    for (const SceneFile& file : files) {
        for (const LocatedPair& route : file._routes)
            _root->addRoute(route._first._value, route._second._value);
    }
    for (const GraphHandler& handler : _handlers)
        if (!handler._label.empty())
            addNodes(handler);
    addPlaces(files);
}

void SceneGraph::addPlaces(const std::vector<SceneFile>& files)
{
    for (std::size_t scene = 0; scene < files.size(); ++scene) {
        const SceneFile& file = files[scene];
        _places._scenes.push_back(file._path);
        for (const GraphHandler& handler : _handlers) {
            if (handler._scene != &file)
                continue;
            const HandlerEntry& entry = *handler._entry;
            _places._handlers.push_back({scene, entry._name._value, entry._kind._value, handler._label});
            if (!handler._label.empty())
                for (const SensorEntry& sensor : file._sensors)
                    if (!sensor._label._value.empty())
                        _places._sensors[{handler._label, sensor._label._value}] = {scene, sensor._name._value};
        }
        for (const LocatedPair& link : file._links)
            _places._links.push_back({scene, link._first._value, link._second._value});
    }
}

GraphHandler SceneGraph::madeHandler(const SceneFile& file, const HandlerEntry& entry)
{
    GraphHandler handler{&file, &entry, {}};
    if (const std::string fault = handlerFault(entry._kind._value); !fault.empty())
        _faults.push_back({&file, entry._kind._position, fault, false});
    if (entry._kind._value != bridgeKind)
        return handler;
    auto made = std::make_unique<Trovio::Namespace>();
    made->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    handler._label = _root->addNamespace("Context", std::move(made));
    for (const SensorEntry& sensor : file._sensors)
        addSensor(handler, sensor);
    for (const LocatedPair& route : entry._routes)
        _root->getNamespace(handler._label)->addRoute(route._first._value, route._second._value);
    return handler;
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

void SceneGraph::addNodes(const GraphHandler& handler)
{
    Trovio::Namespace& space = *_root->getNamespace(handler._label);
    const Merid::URL baseURL = sceneURL(handler._entry->_url._value, handler._scene->_path);
    for (const LabelledNode& node : labelledNodes(*handler._entry)) {
        MadeNode made = madeNode(node, baseURL);
        if (made._node)
            if (const auto failure = failureOf([&] { space.addNamespace(std::move(made._node)); }))
                made = {nullptr, *failure, node._entry->_second._position};
        if (!made._fault.empty())
            _faults.push_back({handler._scene, made._position, made._fault, made._fromOutside});
        const Trovio::Namespace* const standing = space.getNamespace(node._label);
        if (standing == nullptr || standing->inspect()._slots.empty())
            _openPlaces.push_back(pathBelow(handler._label, node._label));
    }
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
    return std::ranges::any_of(_openPlaces, [&](const std::string& place) {
        const std::string slots = place + "/";
        return start.starts_with(slots) || (star != std::string::npos && slots.starts_with(start));
    });
}
} // namespace Scenes
