#pragma once

#include "scene/file/SceneFile.h"
#include "trovio/Namespace.h"
#include "trovio/Slot.h"

#include <map>
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

/// A sensor that a slot of a handler serves.
struct GraphSensor {
    const SceneFile* _scene;
    std::string _name;
    auto operator<=>(const GraphSensor&) const = default;
};

/// What scenes would connect if they ran: their handlers, nodes, slots and routes, in a tree of their own beside the
/// root, so that no node starts. Slots that a node makes only while it runs are not there.
/// Ownership: owns the tree and the slots of the sensors; refers to the files, which must live as long.
class SceneGraph {
public:
    /// Leaves out what cannot be made, see faults().
    explicit SceneGraph(const std::vector<SceneFile>& files);

    const std::vector<GraphHandler>& handlers() const { return _handlers; }
    const std::vector<GraphFault>& faults() const { return _faults; }
    Trovio::NamespaceInfo inspect() const { return _root->inspect(); }

    /// Between fields: "grip.value".
    struct Link {
        const SceneFile* _scene;
        std::string _from, _to;
    };
    const std::vector<Link>& links() const { return _links; }

    /// The handler whose namespace has that path; null if there is none.
    const GraphHandler* handlerAt(const std::string& path) const;
    /// The sensor that has the label in the namespace with that path; null if none has, such as in a node.
    const GraphSensor* sensorAt(const std::string& path, const std::string& label) const;
    /// Whether slots may yet appear under labels that match the pattern: those of a node that could not be made, or
    /// that has none before it runs. The labels are those that the namespace with that path sees.
    bool isOpen(const std::string& path, const std::string& pattern) const;

private:
    GraphHandler madeHandler(const SceneFile& file, const HandlerEntry& entry);
    void addSensor(const GraphHandler& handler, const SensorEntry& entry);
    void addNodes(const GraphHandler& handler);

    using Place = std::pair<std::string, std::string>; // label of a namespace, label of a slot in it
    std::vector<GraphHandler> _handlers;
    std::vector<Link> _links;
    std::vector<GraphFault> _faults;
    std::vector<std::string> _openPlaces; // paths of nodes whose slots nobody knows yet
    std::map<Place, GraphSensor> _sensors;
    std::vector<std::unique_ptr<Trovio::Slot>> _slots;
    std::unique_ptr<Trovio::Namespace> _root; // goes before the slots that it refers to
};
} // namespace Scenes
