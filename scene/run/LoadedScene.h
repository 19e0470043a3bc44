#pragma once

#include "explain/Say.h"
#include "ostrel/Scene.h"
#include "scene/file/SceneFile.h"
#include "scene/run/NodeLabels.h"
#include "scene/run/SceneParts.h"
#include "scene/run/SensorWatch.h"
#include "scene/run/Stopped.h"

#include <deque>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {
class SensorHandler;
}

namespace Scenes {

using Explain::Say;

/// One handler of a scene; null where none could be made. The sensor manager owns it.
struct LoadedHandler {
    const HandlerEntry* _entry;
    Ostrel::SensorHandler* _handler;
    std::string _namespace; // label in the framework's root, or that it would have; empty where the kind has none
};

/// What a scene names and a run goes without: a handler or node that could not be made.
struct MissingPart {
    Position _position;
    std::string _text; // which and why
};

/// A scene file made into a context with sensors and handlers.
/// Ownership: owns its context and sensors; the context's manager owns the handlers.
/// Order:   addSensors, addHandlers, addNodes; then frames; then unregisterSensors, deleteHandlers, destructor.
/// Threads: the scene thread only.
class LoadedScene {
public:
    /// `title` names the scene in messages where several run, else it is empty. Where `stopped` says so, it adds no
    /// more: it is asked before each step that can take long.
    LoadedScene(SceneFile file, std::string title, Stopped stopped, ChooseNode choose = {});

    /// Makes and registers the sensors with their initial values, and links their fields.
    void addSensors();
    /// Makes the handlers and their routes; says which could not be made, and goes on.
    void addHandlers(const Say& say);
    /// Gives back the labels that were kept for handlers that could not be made, once no more handlers come.
    void releaseLabels();
    /// Gives the handlers their nodes, which start at once; says which could not be added, and goes on.
    void addNodes(const Say& say);

    void frame(double now);

    void unregisterSensors();
    void deleteHandlers();

    const SceneFile& file() const { return _file; }
    Ostrel::Context& context() { return _scene.context(); }
    const std::vector<LoadedHandler>& handlers() const { return _handlers; }
    /// In scene order; they end when the sensors are unregistered.
    std::deque<SensorWatch>& watches() { return _watches; }
    const std::vector<MissingPart>& missing() const { return _missing; }
    /// The same for people, a line each, with their places.
    std::vector<std::string> missingLines() const;

private:
    void addSensor(const SensorEntry& entry);
    void addLinks();
    LoadedHandler madeHandler(const HandlerEntry& entry, const Say& say);
    void findSlots(LoadedHandler& loaded);
    void addNode(const LoadedHandler& loaded, const LabelledNode& node, const Say& say);
    std::string lineOf(const MissingPart& part) const;
    void miss(Position at, const std::string& part, const std::string& reason, const Say& say);

    const SceneFile _file;
    const std::string _title;
    const Stopped _stopped;
    const ChooseNode _choose;
    Ostrel::Scene _scene;
    std::vector<LoadedHandler> _handlers;
    std::vector<MissingPart> _missing;
    std::deque<SensorWatch> _watches; // never moves: fields refer to them
};
} // namespace Scenes
