#include "scene/run/LoadedScene.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "ostrel/FieldClass.h"
#include "scene/file/InitialValue.h"
#include "scene/file/Problems.h"
#include "scene/file/SceneURL.h"
#include "scene/run/SceneParts.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorManager.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "trovio/Root.h"

#include <optional>
#include <unordered_map>

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::string_view fieldSuffix = ".value";
constexpr std::size_t maxReason = 1000;
} // namespace

LoadedScene::LoadedScene(SceneFile file, std::string title, Stopped stopped, ChooseNode choose)
    : _file(std::move(file)), _title(std::move(title)), _stopped(std::move(stopped)), _choose(std::move(choose))
{
}

void LoadedScene::addSensors()
{
    for (const SensorEntry& entry : _file._sensors) {
        if (_stopped())
            return;
        addSensor(entry);
    }
    addLinks();
}

void LoadedScene::addSensor(const SensorEntry& entry)
{
    auto field = Ostrel::FieldClass::find(std::string_view(entry._type._value))->create();
    if (entry._value)
        setInitialValue(*field, *entry._value);
    auto sensor = std::make_unique<Ostrel::DirectSensor>(std::move(field));
    sensor->setName(entry._name._value);
    sensor->setLabel(entry._label._value);
    sensor->setDescription(entry._description._value);
    sensor->setBufferSize(entry._buffer._value);
    sensor->setOutput(entry._output._value);
    _watches.emplace_back(_scene.add(std::move(sensor)), _title);
}

void LoadedScene::addLinks()
{
    std::unordered_map<std::string_view, Ostrel::Field*> fields;
    for (const SensorWatch& watch : _watches)
        fields.emplace(watch.sensor().getName(), &watch.field());
    const auto fieldOf = [&fields](std::string_view end) {
        return fields.at(end.substr(0, end.size() - fieldSuffix.size()));
    };
    for (const LocatedPair& link : _file._links)
        fieldOf(link._first._value)->linkTo(*fieldOf(link._second._value));
}

LoadedHandler LoadedScene::madeHandler(const HandlerEntry& entry, const Say& say)
{
    LoadedHandler loaded{&entry, nullptr, {}};
    const std::string& kind = entry._kind._value;
    auto& manager = *Ostrel::SensorManager::requestManager(_scene.context());
    std::optional<std::string> failure;
    if (isKnownKind(kind)) // else the log would say so, too
        failure = failureOf([&] {
            loaded._handler = manager.addHandler(kind, entry._name._value, sceneURL(entry._url._value, _file._path));
        });
    if (loaded._handler != nullptr)
        return loaded;
    if (takesLabel(kind))
        loaded._namespace = Trovio::Root::get().addNamespace("Context", std::make_unique<Trovio::Namespace>());
    miss(entry._kind._position, "handler " + inQuotes(entry._name._value) + " of kind " + inQuotes(kind),
         failure ? *failure : handlerFault(kind), say);
    return loaded;
}

void LoadedScene::releaseLabels()
{
    for (const LoadedHandler& loaded : _handlers)
        if (loaded._handler == nullptr && !loaded._namespace.empty())
            Trovio::Root::get().removeNamespace(loaded._namespace);
}

void LoadedScene::addHandlers(const Say& say)
{
    _handlers.reserve(_file._handlers.size());
    for (const HandlerEntry& entry : _file._handlers) {
        if (_stopped())
            return;
        _handlers.push_back(madeHandler(entry, say));
        if (_handlers.back()._handler == nullptr)
            continue;
        findSlots(_handlers.back());
        for (const LocatedPair& route : entry._routes) {
            if (_stopped())
                return;
            std::string from = route._first._value, to = route._second._value;
            _handlers.back()._handler->addLabel(from, to);
        }
    }
}

void LoadedScene::findSlots(LoadedHandler& loaded)
{
    const auto* const bridge = dynamic_cast<const Ostrel::TrovioSensorHandler*>(loaded._handler);
    if (bridge == nullptr)
        return;
    loaded._namespace = bridge->getNamespaceLabel();
    for (SensorWatch& watch : _watches)
        if (Trovio::Slot* slot = bridge->getSlot(const_cast<Ostrel::DirectSensor*>(&watch.sensor()))) // only looked up
            watch.addSlot(*slot);
}

void LoadedScene::addNodes(const Say& say)
{
    for (const LoadedHandler& loaded : _handlers) {
        if (loaded._handler == nullptr)
            continue;
        for (const LabelledNode& node : labelledNodes(*loaded._entry)) {
            if (_stopped())
                return;
            addNode(loaded, node, say);
        }
    }
}

// Not by addParameter(), which tells only the log why it refuses a node.
void LoadedScene::addNode(const LoadedHandler& loaded, const LabelledNode& node, const Say& say)
{
    std::string type = node._entry->_first._value, settings = node._entry->_second._value;
    if (loaded._namespace.empty())
        return loaded._handler->addParameter(type, settings);
    Trovio::Namespace& space = *Trovio::Root::get().getNamespace(loaded._namespace);
    if (const auto fault = Scenes::addNode(space, node, sceneURL(loaded._entry->_url._value, _file._path), _choose))
        miss(fault->_position, "node " + inQuotes(type), fault->_text, say);
}

std::vector<std::string> LoadedScene::missingLines() const
{
    std::vector<std::string> lines;
    for (const MissingPart& part : _missing)
        lines.push_back(lineOf(part));
    return lines;
}

std::string LoadedScene::lineOf(const MissingPart& part) const
{
    return placeText(_file._path, part._position) + ": " + part._text;
}

void LoadedScene::miss(Position at, const std::string& part, const std::string& reason, const Say& say)
{
    _missing.push_back({at, part + " could not be made: " + escaped(reason, maxReason)});
    say(lineOf(_missing.back()) + "; the run goes on without it");
}

void LoadedScene::frame(double now)
{
    _scene.frame(now);
    _scene.takeChanged(); // ends the round, so that the next change marks its sensor anew
}

void LoadedScene::unregisterSensors()
{
    _watches.clear();
    _scene.clear();
}

void LoadedScene::deleteHandlers()
{
    for (const LoadedHandler& loaded : _handlers)
        if (loaded._handler != nullptr)
            Ostrel::SensorManager::requestManager(_scene.context())->delHandler(loaded._handler);
    _handlers.clear();
}
} // namespace Scenes
