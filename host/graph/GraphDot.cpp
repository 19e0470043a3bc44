#include "explain/DotRoutes.h"
#include "explain/TreeWalk.h"
#include "host/graph/GraphForms.h"

namespace Host {

using namespace Explain;
using namespace Scenes;

namespace {

using Trovio::NamespaceInfo;
using Trovio::SlotInfo;
using Direction = Trovio::Slot::Direction;

class DotWriter {
public:
    explicit DotWriter(const SceneGraph& graph) : _graph(graph) {}

    std::string write()
    {
        const NamespaceInfo root = _graph.inspect();
        _dot.open("digraph scene");
        _dot.line("rankdir=LR; fontname=\"sans-serif\"; node [shape=box, style=rounded, fontname=\"sans-serif\"]; "
                  "edge [fontname=\"sans-serif\", fontsize=10];");
        writeSpace({}, root);
        walkTree(root,
                 [this](const std::string& path, const NamespaceInfo& info) { writeDotRoutes(_dot, path, info); });
        writeLinks();
        _dot.close();
        return _dot.text();
    }

private:
    void writeSpace(const std::string& path, const NamespaceInfo& info)
    {
        for (const SlotInfo& slot : info._slots)
            if (slot._own)
                writeSlot(path, slot);
        if (info._node && info._node->_relays)
            writeInside(path, info);
        for (const NamespaceInfo& child : info._children) {
            const std::string childPath = pathBelow(path, child._label);
            _dot.open("subgraph " + DotText::quoted("cluster " + childPath));
            _dot.line("label=" + DotText::quoted(titleOf(childPath, child)) + ";");
            writeSpace(childPath, child);
            _dot.close();
        }
    }

    // Through a node that passes on what it gets.
    void writeInside(const std::string& path, const NamespaceInfo& node)
    {
        for (const SlotInfo& in : node._slots)
            for (const SlotInfo& out : node._slots)
                if (in._own && out._own && in._direction == Direction::In && out._direction == Direction::Out)
                    _dot.line(dotName(path, in) + " -> " + dotName(path, out) + " [style=dotted];");
    }

    void writeSlot(const std::string& path, const SlotInfo& slot)
    {
        const GraphSensor* const sensor = _graph.sensorAt(path, slot._label);
        if (sensor)
            _slotsOfSensor[*sensor].push_back(dotName(path, slot));
        const std::string title = slot._label + " : " + slot._typeName;
        _dot.line(dotName(path, slot) +
                  " [label=" + DotText::quoted(sensor ? title + " (sensor " + sensor->_name + ")" : title) +
                  (sensor ? ", style=\"rounded,filled\", fillcolor=\"#dde8f5\"];" : "];"));
    }

    std::string titleOf(const std::string& path, const NamespaceInfo& info) const
    {
        if (info._node)
            return info._label + " (node of type " + info._node->_typeName + ")";
        const GraphHandler* const handler = _graph.handlerAt(path);
        return handler ? path + " (handler " + handler->_entry->_name._value + ")" : path;
    }

    // Between fields, from sensor to sensor.
    void writeLinks()
    {
        for (const SceneGraph::Link& link : _graph.links()) {
            const auto slotsAt = [&](const std::string& end) -> const std::vector<std::string>& {
                return _slotsOfSensor[{link._scene, end.substr(0, end.rfind('.'))}];
            };
            for (const std::string& from : slotsAt(link._from))
                for (const std::string& to : slotsAt(link._to))
                    _dot.line(from + " -> " + to + " [style=dotted, label=link];");
        }
    }

    const SceneGraph& _graph;
    std::map<GraphSensor, std::vector<std::string>> _slotsOfSensor; // their names in the picture
    DotText _dot;
};
} // namespace

std::string graphDot(const SceneGraph& graph)
{
    return DotWriter(graph).write();
}
} // namespace Host
