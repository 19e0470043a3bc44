#include "host/SceneGraph.h"

#include "host/Failure.h"
#include "host/SceneURL.h"
#include "ostrel/FieldClass.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/OutSlot.h"

#include <algorithm>

namespace Host {

// In the order of a run: where nodes come after the routes, one that closes a loop of nodes stays apart and says so.
SceneGraph::SceneGraph(const std::vector<SceneFile>& files) : _root(std::make_unique<Trovio::Namespace>())
{
    for (const SceneFile& file : files)
        for (const HandlerEntry& handler : file._handlers)
            _handlers.push_back(madeHandler(file, handler));
    for (const SceneFile& file : files) {
        for (const LocatedPair& route : file._routes)
            _root->addRoute(route._first._value, route._second._value);
        for (const LocatedPair& link : file._links)
            _links.push_back({&file, link._first._value, link._second._value});
    }
    for (const GraphHandler& handler : _handlers)
        if (!handler._label.empty())
            addNodes(handler);
}

GraphHandler SceneGraph::madeHandler(const SceneFile& file, const HandlerEntry& entry)
{
    GraphHandler handler{&file, &entry, {}};
    if (entry._kind._value != "Trovio")
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
    _sensors.emplace(Place(handler._label, label), GraphSensor{handler._scene, entry._name._value});
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
    for (const LocatedPair& node : handler._entry->_nodes)
        failureOf([&] {
            auto standing = Trovio::NodeType::newInstance(node._first._value);
            standing->setBaseURL(sceneURL(handler._entry->_url._value, handler._scene->_path));
            standing->setFieldValues(node._second._value);
            _root->getNamespace(handler._label)->addNamespace(std::move(standing));
        });
}

const GraphHandler* SceneGraph::handlerAt(const std::string& path) const
{
    const auto found = std::ranges::find(_handlers, path, &GraphHandler::_label);
    return path.empty() || found == _handlers.end() ? nullptr : &*found;
}

const GraphSensor* SceneGraph::sensorAt(const std::string& path, const std::string& label) const
{
    const auto found = _sensors.find({path, label});
    return found == _sensors.end() ? nullptr : &found->second;
}
} // namespace Host
