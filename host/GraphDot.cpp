#include "host/GraphForms.h"

#include "host/Escape.h"
#include "host/TreeWalk.h"

namespace Host {
namespace {

using Trovio::NamespaceInfo;
using Trovio::SlotInfo;
using Direction = Trovio::Slot::Direction;

std::string inDotQuotes(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : escaped(text, 1000)) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + "\"";
}

class DotWriter {
public:
    explicit DotWriter(const SceneGraph& graph) : _graph(graph) {}

    std::string write()
    {
        const NamespaceInfo root = _graph.inspect();
        line("digraph scene {");
        ++_depth;
        line("rankdir=LR; fontname=\"sans-serif\"; node [shape=box, style=rounded, fontname=\"sans-serif\"]; "
             "edge [fontname=\"sans-serif\", fontsize=10];");
        writeSpace({}, root);
        walkTree(root, [this](const std::string& path, const NamespaceInfo& info) { writeRoutes(path, info); });
        writeLinks();
        --_depth;
        line("}");
        return _text;
    }

private:
    void line(const std::string& text) { _text += std::string(2 * _depth, ' ') + text + "\n"; }

    void writeSpace(const std::string& path, const NamespaceInfo& info)
    {
        for (const SlotInfo& slot : info._slots)
            if (slot._own)
                writeSlot(path, info, slot);
        if (info._node && info._node->_relays)
            writeInside(path, info);
        for (const NamespaceInfo& child : info._children) {
            const std::string childPath = pathBelow(path, child._label);
            line("subgraph " + inDotQuotes("cluster " + childPath) + " {");
            ++_depth;
            line("label=" + inDotQuotes(titleOf(childPath, child)) + ";");
            writeSpace(childPath, child);
            --_depth;
            line("}");
        }
    }

    // Through a node that passes on what it gets.
    void writeInside(const std::string& path, const NamespaceInfo& node)
    {
        for (const SlotInfo& in : node._slots)
            for (const SlotInfo& out : node._slots)
                if (in._own && out._own && in._direction == Direction::In && out._direction == Direction::Out)
                    line(idOf(path, in) + " -> " + idOf(path, out) + " [style=dotted];");
    }

    // Between fields, from sensor to sensor.
    void writeLinks()
    {
        const auto sensor = [](const std::string& end) { return end.substr(0, end.rfind('.')); };
        for (const SceneGraph::Link& link : _graph.links())
            for (const std::string& from : _slotsOfSensor[sensor(link._from)])
                for (const std::string& to : _slotsOfSensor[sensor(link._to)])
                    line(from + " -> " + to + " [style=dotted, label=link];");
    }

    void writeSlot(const std::string& path, const NamespaceInfo& info, const SlotInfo& slot)
    {
        const std::string sensor = info._node ? std::string() : _graph.sensorOf(slot._label);
        if (!sensor.empty())
            _slotsOfSensor[sensor].push_back(idOf(path, slot));
        line(idOf(path, slot) + " [label=" +
             inDotQuotes(slot._label + " : " + slot._typeName + (sensor.empty() ? "" : " (sensor " + sensor + ")")) +
             (sensor.empty() ? "" : ", style=\"rounded,filled\", fillcolor=\"#dde8f5\"") + "];");
    }

    std::string titleOf(const std::string& path, const NamespaceInfo& info) const
    {
        if (info._node)
            return info._label + " (node of type " + info._node->_typeName + ")";
        for (const GraphHandler& handler : _graph.handlers())
            if (handler._label == path)
                return path + " (handler " + handler._name + ")";
        return path;
    }

    static std::string idOf(const std::string& path, const SlotInfo& slot)
    {
        return inDotQuotes(pathBelow(path, slot._home));
    }

    void writeRoutes(const std::string& path, const NamespaceInfo& info)
    {
        for (const Trovio::RouteInfo& route : info._routes) {
            for (const Trovio::RoutePair& pair : route._pairs)
                writePair(path, info, pair);
            if (route._pairs.empty())
                writeArrow(endOf(path, info, route._from, Direction::Out), endOf(path, info, route._to, Direction::In),
                           route._reason);
        }
    }

    void writePair(const std::string& path, const NamespaceInfo& info, const Trovio::RoutePair& pair)
    {
        writeArrow(endOf(path, info, pair._from, Direction::Out), endOf(path, info, pair._to, Direction::In),
                   pair._reason);
    }

    // The slot with the label; where there is none, a box that stands for what is missing.
    std::string endOf(const std::string& path, const NamespaceInfo& info, const std::string& label, Direction direction)
    {
        const SlotInfo* found = nullptr;
        for (const SlotInfo& slot : info._slots)
            if (slot._label == label && (!found || slot._direction == direction))
                found = &slot;
        if (found)
            return idOf(path, *found);
        const std::string id = inDotQuotes("missing " + pathBelow(path, label));
        line(id + " [label=" + inDotQuotes(label + " ?") + ", style=dashed, color=red, fontcolor=red];");
        return id;
    }

    void writeArrow(const std::string& from, const std::string& to, const std::string& reason)
    {
        line(from + " -> " + to +
             (reason.empty() ? ";" : " [style=dashed, color=red, tooltip=" + inDotQuotes(reason) + "];"));
    }

    const SceneGraph& _graph;
    std::map<std::string, std::vector<std::string>> _slotsOfSensor; // their names in the picture
    std::size_t _depth = 0;
    std::string _text;
};
} // namespace

std::string graphDot(const SceneGraph& graph)
{
    return DotWriter(graph).write();
}
} // namespace Host
