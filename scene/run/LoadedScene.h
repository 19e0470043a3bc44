#pragma once

#include "explain/Say.h"
#include "scene/change/Difference.h"
#include "scene/file/SceneFile.h"
#include "scene/parts/NodeLabels.h"
#include "scene/parts/SceneParts.h"
#include "scene/parts/Stopped.h"
#include "scene/run/LoadedSensors.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Ostrel {
class SensorHandler;
class TrovioSensorHandler;
} // namespace Ostrel

namespace Scenes {

using Explain::Say;
class Plan;

/// One handler of a scene; null where none could be made. The sensor manager owns it.
struct LoadedHandler {
    const HandlerEntry* _entry;
    Ostrel::SensorHandler* _handler;
    std::string _namespace; // label in the framework's root, or that it would have; empty where the kind has none
};

/// What a scene names and a run goes without: a handler or node that could not be made.
struct MissingPart {
    Position _position;
    std::string _text;    // which and why
    std::string _handler; // name of the handler
    std::string _node{};  // label in it; empty where the handler itself is missing
};

/// The slot by which the handler serves the sensor of the watch; null if it does not.
Trovio::Slot* slotOf(const Ostrel::TrovioSensorHandler& handler, const SensorWatch& watch);

/// A scene file made into a context with sensors and handlers.
/// Ownership: owns its context and sensors; the context's manager owns the handlers.
/// Order:   addSensors, addHandlers, addNodes; then frames; then unregisterSensors, deleteHandlers, destructor. Between
///          two frames what differs between two files is taken away by the operations that begin with `end`, and
///          comes by those that begin with `begin`, in the order in which they stand here.
/// Threads: the scene thread only.
class LoadedScene {
public:
    /// `title` names the scene in messages where several run, else it is empty. Where `stopped` says so, it adds no
    /// more: it is asked before each step that can take long.
    LoadedScene(std::shared_ptr<const SceneFile> file, std::string title, Stopped stopped, ChooseNode choose = {});

    /// Makes and registers the sensors with their initial values, and links their fields.
    void addSensors();
    /// Makes the handlers that are not there, with their routes; says which could not be made, and goes on.
    void addHandlers(const Say& say);
    /// Gives back the labels that were kept for handlers that could not be made, once no more handlers come.
    void releaseLabels();
    /// Gives the handlers their nodes, which start at once; says which could not be added, and goes on.
    void addNodes(const Say& say);

    void frame(double now) { _sensors.frame(now); }

    void unregisterSensors() { _sensors.clear(); }
    void deleteHandlers();

    /// Routes in handlers, and links.
    void endRoutes(const SceneDifference& difference);
    /// Nodes, and handlers with all that stands in them.
    void endNodes(const SceneDifference& difference);
    /// All of them.
    void endHandlers();
    void endSensors(const SceneDifference& difference);
    /// Sensors, links and values; from here on the scene's file is the new one. Then come addHandlers() and
    /// releaseLabels(). True where there are other sensors now, or in another order.
    bool beginSensors(const SceneDifference& difference, double now);
    /// Routes of handlers that stayed. False where one of them closes a loop of nodes, and is left out.
    bool beginRoutes(const SceneDifference& difference);
    /// Takes the nodes out of the plan that it made.
    void beginNodes(const SceneDifference& difference, Plan& plan, const Say& say);

    const SceneFile& file() const { return *_file; }
    Ostrel::Context& context() { return _sensors.context(); }
    const std::vector<LoadedHandler>& handlers() const { return _handlers; }
    /// In scene order; they end with their sensors.
    const std::vector<std::unique_ptr<SensorWatch>>& watches() const { return _sensors.watches(); }
    const std::vector<MissingPart>& missing() const { return _missing; }
    /// The same for people, a line each, with their places.
    std::vector<std::string> missingLines() const;

private:
    void makeHandler(const HandlerEntry& entry, const Say& say);
    void keepHandler(LoadedHandler loaded, const HandlerEntry& entry);
    void endHandler(const std::string& name);
    void findSlots(LoadedHandler& loaded);
    const LoadedHandler* findHandler(const std::string& name) const;
    void addNode(const LoadedHandler& loaded, const LabelledNode& node, std::unique_ptr<Trovio::Node> made,
                 const Say& say);
    void adopt(std::shared_ptr<const SceneFile> file);
    std::string lineOf(const MissingPart& part) const;
    void miss(MissingPart part, const std::string& what, const Say& say);

    std::shared_ptr<const SceneFile> _file;
    const Stopped _stopped;
    const ChooseNode _choose;
    LoadedSensors _sensors;
    std::vector<LoadedHandler> _handlers;
    std::vector<MissingPart> _missing;
};
} // namespace Scenes
