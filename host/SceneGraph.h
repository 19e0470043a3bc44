#pragma once

#include "host/SceneFile.h"
#include "trovio/Namespace.h"
#include "trovio/Slot.h"

#include <map>
#include <memory>
#include <vector>

namespace Host {

/// A handler as it stands in the graph; without a label where its kind has no namespace.
struct GraphHandler {
    std::string _name, _kind;
    std::string _label; // of its namespace in the root
};

/// What scenes would connect if they ran: their handlers, nodes, slots and routes, in a tree of their own beside the
/// root, so that no node starts. Slots that a node makes only while it runs are not there.
/// Ownership: owns the tree and the slots of the sensors.
class SceneGraph {
public:
    /// Leaves out nodes that cannot be made; whoever checks the scene says why.
    explicit SceneGraph(const std::vector<SceneFile>& files);

    const std::vector<GraphHandler>& handlers() const { return _handlers; }
    Trovio::NamespaceInfo inspect() const { return _root->inspect(); }

    /// Between fields: "grip.value".
    struct Link {
        std::string _from, _to;
    };
    const std::vector<Link>& links() const { return _links; }

    /// The name of the sensor that has the label in its scene; empty if none has.
    std::string sensorOf(const std::string& label) const;

private:
    void addHandler(const SceneFile& file, const HandlerEntry& entry);
    void addSensor(Trovio::Namespace& space, const SensorEntry& entry);

    std::vector<GraphHandler> _handlers;
    std::vector<Link> _links;
    std::map<std::string, std::string> _sensors; // name by label
    std::vector<std::unique_ptr<Trovio::Slot>> _slots;
    std::unique_ptr<Trovio::Namespace> _root; // goes before the slots that it refers to
};
} // namespace Host
