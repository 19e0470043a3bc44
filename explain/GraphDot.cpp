#include "explain/Graph.h"

#include "explain/GraphEdges.h"
#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"

namespace Explain {
namespace {

using Trovio::NamespaceInfo;
using Trovio::SlotInfo;
using Direction = Trovio::Slot::Direction;

/// Text in the language of graphviz, indented as it is nested.
class DotText {
public:
    /// "head {", and its end.
    void open(const std::string& head)
    {
        line(head + " {");
        ++_depth;
    }
    void close()
    {
        --_depth;
        line("}");
    }
    void line(const std::string& text) { _text += std::string(2 * _depth, ' ') + text + "\n"; }

    const std::string& text() const { return _text; }

private:
    std::size_t _depth = 0;
    std::string _text;
};

// As graphviz keeps a name: the second backslash stays in it.
std::string idOf(const std::string& text)
{
    std::string id;
    for (const char character : escaped(text, 1000))
        id += character == '\\' ? std::string("\\\\") : std::string(1, character);
    return id;
}

std::string quotedId(const std::string& id)
{
    std::string quoted = "\"";
    for (const char character : id)
        quoted += character == '"' ? std::string("\\\"") : std::string(1, character);
    return quoted + "\"";
}

std::string quoted(const std::string& text)
{
    return quotedId(idOf(text));
}

// The name of a slot in the picture; the slot may be seen from the namespace with that path.
std::string quotedName(const std::string& path, const SlotInfo& slot)
{
    return quoted(pathBelow(path, slot._home));
}

class DotWriter {
public:
    explicit DotWriter(const ScenePlaces& places) : _places(places) {}

    std::string write(const NamespaceInfo& root)
    {
        _dot.open("digraph scene");
        _dot.line("rankdir=LR; fontname=\"sans-serif\"; node [shape=box, style=rounded, fontname=\"sans-serif\"]; "
                  "edge [fontname=\"sans-serif\", fontsize=10];");
        writeSpace({}, root);
        for (const GraphEdge& edge : graphEdges(root))
            writeEdge(edge);
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
            _dot.open("subgraph " + quoted("cluster " + childPath));
            _dot.line("label=" + quoted(titleOf(childPath, child)) + ";");
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
                    _dot.line(quotedName(path, in) + " -> " + quotedName(path, out) + " [style=dotted];");
    }

    void writeSlot(const std::string& path, const SlotInfo& slot)
    {
        const ScenePlaces::Sensor* const sensor = _places.sensorAt(path, slot._label);
        if (sensor)
            _slotsOfSensor[*sensor].push_back(quotedName(path, slot));
        const std::string title = slot._label + " : " + slot._typeName;
        _dot.line(quotedName(path, slot) +
                  " [label=" + quoted(sensor ? title + " (sensor " + sensor->_name + ")" : title) +
                  (sensor ? ", style=\"rounded,filled\", fillcolor=\"#dde8f5\"];" : "];"));
    }

    std::string titleOf(const std::string& path, const NamespaceInfo& info) const
    {
        if (info._node)
            return info._label + " (node of type " + info._node->_typeName + ")";
        const ScenePlaces::Handler* const handler = _places.handlerAt(path);
        return handler ? path + " (handler " + handler->_name + ")" : path;
    }

    // An arrow for each pair of slots that a route leads between, and a box for each end that is missing.
    void writeEdge(const GraphEdge& edge)
    {
        for (const GraphEdge::End& end : {edge._from, edge._to})
            if (!end._isThere)
                _dot.line(quotedId(dotName(end)) + " [label=" + quoted(end._label + " ?") +
                          ", style=dashed, color=red, fontcolor=red];");
        const std::string style = " [style=dashed, color=red, tooltip=" + quoted(edge._reason) + "];";
        _dot.line(quotedId(dotName(edge._from)) + " -> " + quotedId(dotName(edge._to)) +
                  (edge._reason.empty() ? ";" : style));
    }

    // Between fields, from sensor to sensor.
    void writeLinks()
    {
        for (const ScenePlaces::Link& link : _places._links) {
            const auto slotsAt = [&](const std::string& end) -> const std::vector<std::string>& {
                return _slotsOfSensor[{link._scene, end.substr(0, end.rfind('.'))}];
            };
            for (const std::string& from : slotsAt(link._from))
                for (const std::string& to : slotsAt(link._to))
                    _dot.line(from + " -> " + to + " [style=dotted, label=link];");
        }
    }

    const ScenePlaces& _places;
    std::map<ScenePlaces::Sensor, std::vector<std::string>> _slotsOfSensor; // their names in the picture
    DotText _dot;
};
} // namespace

std::string dotName(const GraphEdge::End& end)
{
    return idOf(end._isThere ? end._path : "missing " + end._path);
}

std::string graphDot(const NamespaceInfo& root, const ScenePlaces& places)
{
    return DotWriter(places).write(root);
}
} // namespace Explain
