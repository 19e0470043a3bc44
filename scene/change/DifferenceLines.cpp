#include "scene/change/Difference.h"

#include "explain/text/Escape.h"

namespace Scenes {

using namespace Explain;

namespace {

constexpr std::size_t maxLines = 200;

class Lines {
public:
    /// What begins each line where there are several scenes.
    void setScene(const std::string& start) { _start = start; }
    void add(const std::string& text)
    {
        if (++_count <= maxLines)
            _lines.push_back(_start + text);
    }
    std::vector<std::string> take()
    {
        if (_count > maxLines)
            _lines.push_back("and " + std::to_string(_count - maxLines) + " more");
        return std::move(_lines);
    }

private:
    std::string _start;
    std::vector<std::string> _lines;
    std::size_t _count = 0;
};

template <class Entry>
void addParts(const std::string& what, const std::vector<PartChange<Entry>>& changes, Lines& lines)
{
    for (const auto& [before, after, why] : changes) {
        const std::string name = what + " " + inQuotes((after ? after : before)->_name._value);
        lines.add(name + (!before ? " comes" : !after ? " goes" : " is made anew: " + why));
    }
}

const std::string& typeOf(const LabelledNode& node)
{
    return node._entry->_first._value;
}

const std::string& settingsOf(const LabelledNode& node)
{
    return node._entry->_second._value;
}

/// What it had and what it gets. Nodes may have got their labels from each other, with the same text in the file.
std::string newsOf(const LabelledNode& before, const LabelledNode& after)
{
    if (typeOf(before) != typeOf(after))
        return "type " + inQuotes(typeOf(before)) + " -> " + inQuotes(typeOf(after));
    const bool isSame = settingsOf(before) == settingsOf(after);
    return "settings " + inQuotes(isSame ? before._settings : settingsOf(before)) + " -> " +
           inQuotes(isSame ? after._settings : settingsOf(after));
}

void addNodes(const SceneDifference& difference, Lines& lines)
{
    for (const NodeChange& node : difference._nodes) {
        const std::string whose =
            difference._after->_handlers.size() > 1 ? " of handler " + inQuotes(node._handler) : std::string();
        const std::string name = "node " + inQuotes(node._label) + whose;
        if (!node._after)
            lines.add(name + " ends");
        else if (!node._before)
            lines.add(name + " starts: " + escaped(typeOf(*node._after)) + " " + inQuotes(settingsOf(*node._after)));
        else
            lines.add(name + " starts anew: " + newsOf(*node._before, *node._after));
    }
}

void addRoutes(const std::string& what, const std::vector<RouteChange>& changes, Lines& lines)
{
    for (const RouteChange& change : changes)
        lines.add(what + " " + inQuotes(change._route._first._value) + " -> " + inQuotes(change._route._second._value) +
                  (change._isNew ? " comes" : " goes"));
}
} // namespace

std::vector<std::string> linesOf(const std::vector<SceneDifference>& differences)
{
    Lines lines;
    for (const SceneDifference& difference : differences) {
        lines.setScene(differences.size() > 1 ? escaped(difference._after->_path) + ": " : std::string());
        for (const std::string& setting : difference._settings)
            lines.add(setting);
        addParts("handler", difference._handlers, lines);
        addNodes(difference, lines);
        addParts("sensor", difference._sensors, lines);
        for (const SensorChange& change : difference._values)
            lines.add("sensor " + inQuotes(change._after->_name._value) + " gets the new value of the file");
        addRoutes("route", difference._routes, lines);
        addRoutes("link", difference._links, lines);
    }
    return lines.take();
}
} // namespace Scenes
