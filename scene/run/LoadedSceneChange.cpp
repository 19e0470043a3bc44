// What takes parts of a scene away and brings others while it runs.

#include "scene/change/Plan.h"
#include "scene/run/LoadedScene.h"
#include "sensorManager/SensorHandler.h"
#include "sensorManager/SensorManager.h"
#include "sensorManager/TrovioSensorHandler.h"
#include "trovio/Exception.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Scenes {

using Trovio::Root;

void LoadedScene::endRoutes(const SceneDifference& difference)
{
    for (const RouteChange& change : difference._routes)
        if (const LoadedHandler* const loaded = change._isNew ? nullptr : findHandler(change._handler);
            loaded && loaded->_handler) {
            std::string from = change._route._first._value, to = change._route._second._value;
            loaded->_handler->removeLabel(from, to);
        }
    for (const RouteChange& change : difference._links)
        if (!change._isNew)
            _sensors.unlink(change._route);
}

void LoadedScene::endNodes(const SceneDifference& difference)
{
    for (const NodeChange& change : difference._nodes) {
        const LoadedHandler& loaded = *findHandler(change._handler);
        Trovio::Namespace* const space = Root::get().getNamespace(loaded._namespace);
        if (change._before && space && space->getNamespace(change._label))
            space->removeNamespace(change._label);
        std::erase_if(_missing, [&change](const MissingPart& part) {
            return part._handler == change._handler && part._node == change._label;
        });
    }
    for (const HandlerChange& change : difference._handlers)
        if (change._before)
            endHandler(change._before->_name._value);
}

// The nodes stop first, while all that they push into is still there.
void LoadedScene::endHandler(const std::string& name)
{
    const auto found = std::ranges::find_if(
        _handlers, [&name](const LoadedHandler& loaded) { return loaded._entry->_name._value == name; });
    std::erase_if(_missing, [&name](const MissingPart& part) { return part._handler == name; });
    std::unique_ptr<Trovio::Namespace> space;
    if (const auto* const bridge = dynamic_cast<const Ostrel::TrovioSensorHandler*>(found->_handler)) {
        space = Root::get().removeNamespace(found->_namespace);
        for (const auto& watch : watches())
            if (const Trovio::Slot* const slot = slotOf(*bridge, *watch))
                watch->removeSlot(*slot);
    }
    if (found->_handler)
        Ostrel::SensorManager::requestManager(context())->delHandler(found->_handler);
    _handlers.erase(found);
}

void LoadedScene::endHandlers()
{
    while (!_handlers.empty())
        endHandler(_handlers.back()._entry->_name._value);
}

void LoadedScene::endSensors(const SceneDifference& difference)
{
    std::vector<std::string> names;
    for (const SensorChange& change : difference._sensors)
        if (change._before)
            names.push_back(change._before->_name._value);
    _sensors.remove(names);
}

bool LoadedScene::beginSensors(const SceneDifference& difference, double now)
{
    adopt(difference._after);
    for (const SensorChange& change : difference._sensors)
        if (change._after) {
            SensorWatch& watch = _sensors.add(*change._after);
            for (const LoadedHandler& loaded : _handlers)
                if (const auto* const bridge = dynamic_cast<const Ostrel::TrovioSensorHandler*>(loaded._handler))
                    if (Trovio::Slot* const slot = slotOf(*bridge, watch))
                        watch.addSlot(*slot);
        }
    const bool isReordered = _sensors.putInOrder(_file->_sensors);
    if (!difference._sensors.empty() || !difference._links.empty())
        for (const LocatedPair& link : _file->_links)
            _sensors.link(link);
    for (const SensorChange& change : difference._values)
        _sensors.setValue(*change._after, now);
    return isReordered || !difference._sensors.empty();
}

// What could not be made, and stays so, stands elsewhere in the new file, perhaps.
void LoadedScene::adopt(std::shared_ptr<const SceneFile> file)
{
    for (MissingPart& part : _missing) {
        const LoadedHandler& loaded = *findHandler(part._handler);
        const auto entry = std::ranges::find_if(
            file->_handlers, [&part](const HandlerEntry& handler) { return handler._name._value == part._handler; });
        if (part._node.empty()) {
            part._position = entry->_kind._position;
            continue;
        }
        const auto isIt = [&part](const LabelledNode& node) { return node._label == part._node; };
        const std::vector<LabelledNode> before = labelledNodes(*loaded._entry), after = labelledNodes(*entry);
        const LocatedPair &old = *std::ranges::find_if(before, isIt)->_entry,
                          &now = *std::ranges::find_if(after, isIt)->_entry;
        part._position = part._position == old._first._position || now._second._position._line == 0
                             ? now._first._position
                             : now._second._position;
    }
    _file = std::move(file);
}

bool LoadedScene::beginRoutes(const SceneDifference& difference)
{
    bool areAll = true;
    for (const RouteChange& change : difference._routes) {
        const LoadedHandler* const loaded = change._isNew ? findHandler(change._handler) : nullptr;
        if (!loaded || !loaded->_handler)
            continue;
        std::string from = change._route._first._value, to = change._route._second._value;
        try {
            loaded->_handler->addLabel(from, to);
        } catch (const Trovio::Exception&) { // the file's labels are good
            areAll = false;
        }
    }
    return areAll;
}

void LoadedScene::beginNodes(const SceneDifference& difference, Plan& plan, const Say& say)
{
    const auto add = [&](const LoadedHandler& loaded, const LabelledNode& node) {
        if (loaded._handler)
            addNode(loaded, node, plan.takeNode(*loaded._entry, node._label), say);
    };
    for (const NodeChange& change : difference._nodes)
        if (change._after)
            add(*findHandler(change._handler), *change._after);
    for (const HandlerChange& change : difference._handlers)
        if (change._after)
            for (const LabelledNode& node : labelledNodes(*change._after))
                add(*findHandler(change._after->_name._value), node);
}
} // namespace Scenes
