#include "explain/Graph.h"

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

std::string quoted(const std::string& text)
{
    std::string quoted = "\"";
    for (const char character : escaped(text, 1000)) {
        if (character == '"' || character == '\\')
            quoted += '\\';
        quoted += character;
    }
    return quoted + "\"";
}

// The name of a slot in the picture; the slot may be seen from the namespace with that path.
std::string dotName(const std::string& path, const SlotInfo& slot)
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
        walkTree(root, [this](const std::string& path, const NamespaceInfo& info) { writeRoutes(path, info); });
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
                    _dot.line(dotName(path, in) + " -> " + dotName(path, out) + " [style=dotted];");
    }

    void writeSlot(const std::string& path, const SlotInfo& slot)
    {
        const ScenePlaces::Sensor* const sensor = _places.sensorAt(path, slot._label);
        if (sensor)
            _slotsOfSensor[*sensor].push_back(dotName(path, slot));
        const std::string title = slot._label + " : " + slot._typeName;
        _dot.line(dotName(path, slot) +
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
    void writeRoutes(const std::string& path, const NamespaceInfo& info)
    {
        for (const Trovio::RouteInfo& route : info._routes) {
            for (const Trovio::RoutePair& pair : route._pairs)
                writePair(path, info, pair);
            if (route._pairs.empty())
                writePair(path, info, {route._from, route._to, route._reason});
        }
    }

    void writePair(const std::string& path, const NamespaceInfo& info, const Trovio::RoutePair& pair)
    {
        const std::string from = endOf(path, info, pair._from, Direction::Out);
        const std::string to = endOf(path, info, pair._to, Direction::In);
        const std::string style = " [style=dashed, color=red, tooltip=" + quoted(pair._reason) + "];";
        _dot.line(from + " -> " + to + (pair._reason.empty() ? ";" : style));
    }

    // The slot with the label; where there is none, a box that stands for what is missing.
    std::string endOf(const std::string& path, const NamespaceInfo& info, const std::string& label, Direction direction)
    {
        const SlotInfo* found = nullptr;
        for (const SlotInfo& slot : info._slots)
            if (slot._label == label && (!found || slot._direction == direction))
                found = &slot;
        if (found)
            return dotName(path, *found);
        const std::string name = quoted("missing " + pathBelow(path, label));
        _dot.line(name + " [label=" + quoted(label + " ?") + ", style=dashed, color=red, fontcolor=red];");
        return name;
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

std::string graphDot(const NamespaceInfo& root, const ScenePlaces& places)
{
    return DotWriter(places).write(root);
}
} // namespace Explain
