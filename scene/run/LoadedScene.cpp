#include "scene/run/LoadedScene.h"

#include "explain/text/Escape.h"
#include "explain/text/Failure.h"
#include "scene/file/SceneURL.h"
#include "scene/parts/SceneParts.h"
#include "scene/toml/Problems.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorManager.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "trovio/Root.h"

#include <algorithm>
#include <optional>

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::size_t maxReason = 1000;

void addRoute(Ostrel::SensorHandler& handler, const LocatedPair& route)
{
    std::string from = route._first._value, to = route._second._value;
    handler.addLabel(from, to);
}

/// Keeps the label taken of a handler that could not be made.
std::string takeLabel()
{
    return Trovio::Root::get().addNamespace("Context", std::make_unique<Trovio::Namespace>());
}
} // namespace

Trovio::Slot* slotOf(const Ostrel::TrovioSensorHandler& handler, const SensorWatch& watch)
{
    return handler.getSlot(const_cast<Ostrel::DirectSensor*>(&watch.sensor())); // which is only looked up
}

LoadedScene::LoadedScene(std::shared_ptr<const SceneFile> file, std::string title, Stopped stopped, ChooseNode choose)
    : _file(std::move(file)), _stopped(std::move(stopped)), _choose(std::move(choose)), _sensors(std::move(title))
{
}

void LoadedScene::addSensors()
{
    for (const SensorEntry& entry : _file->_sensors) {
        if (_stopped())
            return;
        _sensors.add(entry);
    }
    for (const LocatedPair& link : _file->_links)
        _sensors.link(link);
}

void LoadedScene::addHandlers(const Say& say)
{
    std::vector<LoadedHandler> there = std::move(_handlers);
    _handlers.clear();
    _handlers.reserve(_file->_handlers.size());
    for (const HandlerEntry& entry : _file->_handlers) {
        const auto known = std::ranges::find_if(
            there, [&entry](const LoadedHandler& loaded) { return loaded._entry->_name._value == entry._name._value; });
        if (known != there.end())
            keepHandler(std::move(*known), entry);
        else if (!_stopped())
            makeHandler(entry, say);
    }
}

void LoadedScene::keepHandler(LoadedHandler loaded, const HandlerEntry& entry)
{
    loaded._entry = &entry;
    if (loaded._handler == nullptr && !loaded._namespace.empty())
        loaded._namespace = takeLabel();
    _handlers.push_back(std::move(loaded));
}

void LoadedScene::makeHandler(const HandlerEntry& entry, const Say& say)
{
    LoadedHandler loaded{&entry, nullptr, {}};
    const std::string& kind = entry._kind._value;
    auto& manager = *Ostrel::SensorManager::requestManager(context());
    std::optional<std::string> failure;
    if (isKnownKind(kind)) // else the log would say so, too
        failure = failureOf([&] {
            loaded._handler = manager.addHandler(kind, entry._name._value, sceneURL(entry._url._value, _file->_path));
        });
    _handlers.push_back(std::move(loaded));
    if (_handlers.back()._handler == nullptr) {
        if (takesLabel(kind))
            _handlers.back()._namespace = takeLabel();
        miss({entry._kind._position, failure ? *failure : handlerFault(kind), entry._name._value},
             "handler " + inQuotes(entry._name._value) + " of kind " + inQuotes(kind), say);
        return;
    }
    findSlots(_handlers.back());
    for (const LocatedPair& route : entry._routes) {
        if (_stopped())
            return;
        addRoute(*_handlers.back()._handler, route);
    }
}

void LoadedScene::releaseLabels()
{
    for (const LoadedHandler& loaded : _handlers)
        if (loaded._handler == nullptr && !loaded._namespace.empty())
            Trovio::Root::get().removeNamespace(loaded._namespace);
}

void LoadedScene::findSlots(LoadedHandler& loaded)
{
    const auto* const bridge = dynamic_cast<const Ostrel::TrovioSensorHandler*>(loaded._handler);
    if (bridge == nullptr)
        return;
    loaded._namespace = bridge->getNamespaceLabel();
    for (const auto& watch : watches())
        if (Trovio::Slot* const slot = slotOf(*bridge, *watch))
            watch->addSlot(*slot);
}

void LoadedScene::addNodes(const Say& say)
{
    for (const LoadedHandler& loaded : _handlers) {
        if (loaded._handler == nullptr)
            continue;
        for (const LabelledNode& node : labelledNodes(*loaded._entry)) {
            if (_stopped())
                return;
            addNode(loaded, node, nullptr, say);
        }
    }
}

// Not by addParameter(), which tells only the log why it refuses a node.
void LoadedScene::addNode(const LoadedHandler& loaded, const LabelledNode& node, std::unique_ptr<Trovio::Node> made,
                          const Say& say)
{
    std::string type = node._entry->_first._value, settings = node._entry->_second._value;
    if (loaded._namespace.empty())
        return loaded._handler->addParameter(type, settings);
    Trovio::Namespace& space = *Trovio::Root::get().getNamespace(loaded._namespace);
    const Merid::URL base = sceneURL(loaded._entry->_url._value, _file->_path);
    if (const auto fault = Scenes::addNode(space, node, base, _choose, std::move(made)))
        miss({fault->_position, fault->_text, loaded._entry->_name._value, node._label}, "node " + inQuotes(type), say);
}

const LoadedHandler* LoadedScene::findHandler(const std::string& name) const
{
    const auto found = std::ranges::find_if(
        _handlers, [&name](const LoadedHandler& loaded) { return loaded._entry->_name._value == name; });
    return found == _handlers.end() ? nullptr : &*found;
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
    return placeText(_file->_path, part._position) + ": " + part._text;
}

void LoadedScene::miss(MissingPart part, const std::string& what, const Say& say)
{
    part._text = what + " could not be made: " + escaped(part._text, maxReason);
    _missing.push_back(std::move(part));
    say(lineOf(_missing.back()) + "; the run goes on without it");
}

void LoadedScene::deleteHandlers()
{
    for (const LoadedHandler& loaded : _handlers)
        if (loaded._handler != nullptr)
            Ostrel::SensorManager::requestManager(context())->delHandler(loaded._handler);
    _handlers.clear();
}
} // namespace Scenes
