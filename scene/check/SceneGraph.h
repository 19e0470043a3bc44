#pragma once

#include "explain/Graph.h"
#include "scene/file/SceneFile.h"
#include "scene/parts/Stopped.h"
#include "trovio/Namespace.h"
#include "trovio/Slot.h"
#include "trovio/routing/Pattern.h"

#include <memory>
#include <vector>

namespace Scenes {

/// A handler as it stands in the graph; without a label where its kind has no namespace.
struct GraphHandler {
    const SceneFile* _scene;
    const HandlerEntry* _entry;
    std::string _label; // of its namespace in the root
};

/// A handler or a node that cannot be made, so that a run goes without it.
struct GraphFault {
    const SceneFile* _scene;
    Position _position;
    std::string _text;
    bool _fromOutside; // the scene may be right: what it names is not usable on this machine
};

/// What scenes would connect if they ran: their handlers, nodes, slots and routes, in a tree of their own beside the
/// root, so that no node starts. Slots that a node makes only while it runs are not there.
/// Ownership: owns the tree and the slots of the sensors; refers to the files, which must live as long.
/// Threads:   one.
class SceneGraph {
public:
    /// Leaves out what cannot be made, see faults(). Where `stopped` says so, it leaves off: it is asked before each
    /// step that can take long.
    explicit SceneGraph(
        const std::vector<SceneFile>& files, const Stopped& stopped = [] { return false; });

    const std::vector<GraphHandler>& handlers() const { return _handlers; }
    const std::vector<GraphFault>& faults() const { return _faults; }
    Trovio::NamespaceInfo inspect() const { return _root->inspect(); }

    /// What the scenes say about the tree.
    const Explain::ScenePlaces& places() const { return _places; }

    /// The handler whose namespace has that path; null if there is none.
    const GraphHandler* handlerAt(const std::string& path) const;
    /// Whether slots may yet appear under labels that match the pattern: those of a node that could not be made, or
    /// that has none before it runs. The labels are those that the namespace with that path sees.
    bool isOpen(const std::string& path, const std::string& pattern) const;
    /// The paths that slots may yet be routed to once they appear, as patterns. `tree` is what inspect() returned.
    std::vector<Trovio::Pattern> openTargets(const Trovio::NamespaceInfo& tree) const;

private:
    void addHandlers(const std::vector<SceneFile>& files, const Stopped& stopped);
    GraphHandler madeHandler(const SceneFile& file, const HandlerEntry& entry);
    void addSensor(const GraphHandler& handler, const SensorEntry& entry);
    void addPlaces(const std::vector<SceneFile>& files);
    void addRoutes(const std::vector<LocatedPair>& routes, Trovio::Namespace& space, const Stopped& stopped);
    void addNodes(const GraphHandler& handler, const Stopped& stopped);
    void noteOpen(const Trovio::Namespace& space, const std::string& handler, const std::string& node);

    std::vector<GraphHandler> _handlers;
    std::vector<GraphFault> _faults;
    std::vector<std::string> _openPlaces;     // paths of nodes and handlers whose slots nobody knows
    std::vector<Trovio::Pattern> _openLabels; // of slots that nodes may make while they run
    Explain::ScenePlaces _places;
    std::vector<std::unique_ptr<Trovio::Slot>> _slots;
    std::unique_ptr<Trovio::Namespace> _root; // goes before the slots that it refers to
};

/// The graph of these scenes. Throws SceneError where they cannot be connected.
std::unique_ptr<SceneGraph> connectScenes(const std::vector<SceneFile>& files, const Stopped& stopped);
} // namespace Scenes
