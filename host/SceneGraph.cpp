#include "host/SceneGraph.h"

#include "host/Failure.h"
#include "host/SceneURL.h"
#include "ostrel/FieldClass.h"
#include "sensorManager/FieldTypes.h"
#include "trovio/InSlot.h"
#include "trovio/Node.h"
#include "trovio/NodeType.h"
#include "trovio/OutSlot.h"

namespace Host {

SceneGraph::SceneGraph(const std::vector<SceneFile>& files) : _root(std::make_unique<Trovio::Namespace>())
{
    for (const SceneFile& file : files)
        for (const HandlerEntry& handler : file._handlers)
            addHandler(file, handler);
    for (const SceneFile& file : files) {
        for (const LocatedPair& route : file._routes)
            _root->addRoute(route._first._value, route._second._value);
        for (const LocatedPair& link : file._links)
            _links.push_back({link._first._value, link._second._value});
    }
}

void SceneGraph::addHandler(const SceneFile& file, const HandlerEntry& entry)
{
    _handlers.push_back({entry._name._value, entry._kind._value, {}});
    if (entry._kind._value != "Trovio")
        return;
    auto made = std::make_unique<Trovio::Namespace>();
    made->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
    const std::string label = _root->addNamespace("Context", std::move(made));
    _handlers.back()._label = label;
    Trovio::Namespace& space = *_root->getNamespace(label);
    for (const SensorEntry& sensor : file._sensors)
        addSensor(space, sensor);
    for (const LocatedPair& node : entry._nodes)
        failureOf([&] {
            auto standing = Trovio::NodeType::newInstance(node._first._value);
            standing->setBaseURL(sceneURL(entry._url._value, file._path));
            standing->setFieldValues(node._second._value);
            space.addNamespace(std::move(standing));
        });
    for (const LocatedPair& route : entry._routes)
        space.addRoute(route._first._value, route._second._value);
}

void SceneGraph::addSensor(Trovio::Namespace& space, const SensorEntry& entry)
{
    const std::string& label = entry._label._value;
    if (label.empty())
        return;
    _sensors.emplace(label, entry._name._value);
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

std::string SceneGraph::sensorOf(const std::string& label) const
{
    const auto found = _sensors.find(label);
    return found == _sensors.end() ? std::string() : found->second;
}
} // namespace Host
