#include "scene/check/RouteCheck.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

using Trovio::Slot;
using Trovio::SlotInfo;

constexpr std::size_t maxHints = 20;
constexpr std::size_t maxReason = 400;
} // namespace

RouteCheck::RouteCheck(const SceneGraph& graph, std::string path, const Trovio::NamespaceInfo& info)
    : _graph(graph), _path(std::move(path)), _info(info), _hintsLeft(maxHints)
{
    for (const Trovio::RouteInfo& route : info._routes)
        _routes.emplace(std::pair<std::string_view, std::string_view>(route._from, route._to), &route);
}

void RouteCheck::check(const LocatedPair& route, const Note& note)
{
    const std::string quoted =
        "the route from " + inQuotes(route._first._value) + " to " + inQuotes(route._second._value);
    const End from = endAt(route._first, Slot::Direction::Out), to = endAt(route._second, Slot::Direction::In);
    const bool isOpposed = checkDirections(quoted, from, to, note);
    const bool isFromMissing = checkMissing(quoted, from, note), isToMissing = checkMissing(quoted, to, note);
    if (!isOpposed && !isFromMissing && !isToMissing)
        checkPairs(route, quoted, note);
}

RouteCheck::End RouteCheck::endAt(const LocatedText& text, Slot::Direction direction) const
{
    End end{text, direction};
    end._isPattern = text._value.find('*') != std::string::npos;
    auto slot = std::ranges::lower_bound(_info._slots, text._value, {}, &SlotInfo::_label);
    for (; slot != _info._slots.end() && slot->_label == text._value; ++slot)
        if (slot->_direction == direction)
            end._isMet = true;
        else
            end._opposed = &*slot;
    if (end._isMet)
        end._opposed = nullptr;
    return end;
}

bool RouteCheck::isThere(const std::string& label) const
{
    return std::ranges::binary_search(_info._slots, label, {}, &SlotInfo::_label);
}

bool RouteCheck::checkDirections(const std::string& route, const End& from, const End& to, const Note& note) const
{
    if (from._opposed && to._opposed)
        note(from._text._position, route + " points the wrong way: " + inQuotes(from._text._value) +
                                       " is an in-slot, and " + inQuotes(to._text._value) +
                                       " an out-slot; swap the two ends");
    else if (from._opposed || to._opposed) {
        const End& end = from._opposed ? from : to;
        note(end._text._position, route + " points the wrong way: " + whyOpposed(end));
    }
    return from._opposed || to._opposed;
}

std::string RouteCheck::whyOpposed(const End& end) const
{
    const std::string label = inQuotes(end._text._value);
    const bool mustGive = end._direction == Slot::Direction::Out;
    if (const Explain::ScenePlaces::Sensor* const sensor = sensorOf(*end._opposed))
        return "sensor " + inQuotes(sensor->_name) + " at " + label +
               (mustGive ? " takes values; with `output = true` it gives them"
                         : " has `output = true`, so it gives values; without that it takes them");
    return label +
           (mustGive ? " is an in-slot, but a route begins at an out-slot"
                     : " is an out-slot, but a route ends at an in-slot") +
           "; swap the two ends, or route to another slot";
}

// Own slots of a handler are sensors; in the root they stand behind the label of their handler.
const Explain::ScenePlaces::Sensor* RouteCheck::sensorOf(const SlotInfo& slot) const
{
    if (!_path.empty())
        return slot._own ? _graph.places().sensorAt(_path, slot._label) : nullptr;
    const std::size_t slash = slot._home.find('/');
    return slash == std::string::npos
               ? nullptr
               : _graph.places().sensorAt(slot._home.substr(0, slash), slot._home.substr(slash + 1));
}

bool RouteCheck::checkMissing(const std::string& route, const End& end, const Note& note)
{
    if (!end.isMissing() || _graph.isOpen(_path, end._text._value))
        return false;
    note(end._text._position,
         route + " is not connected: no slot has the label " + inQuotes(end._text._value) + nearest(end));
    return true;
}

// The part of a label that is there, such as the node without its slot, is nearer than any spelling.
std::string RouteCheck::nearest(const End& end)
{
    const std::string& label = end._text._value;
    if (_hintsLeft == 0)
        return {};
    --_hintsLeft;
    std::vector<std::string_view> names;
    for (const SlotInfo& slot : _info._slots)
        if (slot._direction == end._direction)
            names.push_back(slot._label);
    const auto part = std::ranges::find_if(
        names, [&](std::string_view name) { return name.ends_with("/" + label) || name.starts_with(label + "/"); });
    const std::string_view meant = part == names.end() ? nearestName(label, names) : *part;
    return meant.empty() ? std::string() : "; did you mean " + inQuotes(meant) + "?";
}

void RouteCheck::checkPairs(const LocatedPair& route, const std::string& quoted, const Note& note) const
{
    const std::string &from = route._first._value, &to = route._second._value;
    const auto found = _routes.find({from, to});
    if (found == _routes.end())
        return;
    const Trovio::RouteInfo& known = *found->second;
    bool isApart = false;
    for (const Trovio::RoutePair& pair : known._pairs)
        if (!pair._reason.empty() && isThere(pair._to)) {
            isApart = true;
            note(route._first._position, inQuotes(pair._from) + " and " + inQuotes(pair._to) +
                                             " stay apart: " + escaped(pair._reason, maxReason));
        }
    if (known.isPending() && !isApart && !_graph.isOpen(_path, from) && !_graph.isOpen(_path, to))
        note(route._first._position, quoted + " is not connected: " + escaped(known._reason, maxReason));
}
} // namespace Scenes
