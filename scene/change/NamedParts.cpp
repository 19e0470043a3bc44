#include "scene/change/NamedParts.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "scene/change/HandlerLabels.h"
#include "scene/change/WrittenHandler.h"
#include "scene/parts/NodeLabels.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

/// Whether `text` names what has that label.
bool names(std::string_view text, std::string_view label)
{
    return label == text || (!text.empty() && label.size() > text.size() && label.ends_with(text) &&
                             label[label.size() - text.size() - 1] == '/');
}

std::vector<HandlerPlace> placesOf(const SceneFiles& files)
{
    std::vector<HandlerPlace> places;
    const auto labels = handlerLabels(files);
    for (std::size_t scene = 0; scene < files.size(); ++scene)
        for (std::size_t handler = 0; handler < labels[scene].size(); ++handler)
            if (!labels[scene][handler].empty())
                places.push_back({scene, handler, labels[scene][handler]});
    return places;
}

std::vector<NamedNode> namedNodes(const SceneFiles& files)
{
    std::vector<NamedNode> nodes;
    for (const auto& [scene, handler, path] : placesOf(files)) {
        std::size_t number = 0;
        for (const LabelledNode& node : labelledNodes(files[scene]->_handlers[handler]))
            nodes.push_back({path + "/" + node._label, scene, handler, number++});
    }
    return nodes;
}

/// "; did you mean 'Scale'?": with the label that is nearest, as long or as short as what was found.
std::string didYouMean(const std::string& found, const std::vector<std::string>& labels)
{
    std::vector<std::string_view> known;
    for (const std::string& label : labels) {
        known.emplace_back(label);
        if (const std::size_t slash = label.find('/'); slash != std::string::npos)
            known.push_back(known.back().substr(slash + 1));
    }
    const std::string_view nearest = nearestName(found, known);
    return nearest.empty() ? std::string() : "; did you mean " + inQuotes(nearest) + "?";
}

std::string quoted(const NamedRoute& route)
{
    return inQuotes(route._from) + " to " + inQuotes(route._to);
}

/// What leads from or to one of the two labels instead.
std::string nearestRoutes(const std::vector<NamedRoute>& routes, const std::string& from, const std::string& to)
{
    constexpr std::size_t maxRoutes = 3;
    std::vector<std::string> near, ends;
    for (const NamedRoute& route : routes) {
        ends.insert(ends.end(), {route._from, route._to});
        if (near.size() < maxRoutes && (names(from, route._from) || names(to, route._to)))
            near.push_back(quoted(route));
    }
    std::string text;
    for (const std::string& route : near)
        text += (text.empty() ? "; there is one from " : ", one from ") + route;
    const std::string meant = didYouMean(from, ends);
    return !text.empty() ? text : meant.empty() ? didYouMean(to, ends) : meant;
}
} // namespace

NamedNode findNode(const SceneFiles& files, const std::string& label)
{
    const std::vector<NamedNode> nodes = namedNodes(files);
    std::vector<std::string> labels;
    std::vector<const NamedNode*> found;
    for (const NamedNode& node : nodes) {
        labels.push_back(node._label);
        if (node._label == label)
            return node;
        if (names(label, node._label))
            found.push_back(&node);
    }
    if (found.size() == 1)
        return *found.front();
    if (found.empty())
        throw NoSuchPart("no node of a scene has the label " + inQuotes(label) + didYouMean(label, labels) +
                         " (ostrel-host list shows all)");
    throw SceneError(std::to_string(found.size()) + " nodes are called " + inQuotes(label) + "; say " +
                     inQuotes(found[0]->_label) + " or " + inQuotes(found[1]->_label));
}

std::vector<NamedRoute> namedRoutes(const SceneFiles& files)
{
    std::vector<NamedRoute> routes;
    for (std::size_t scene = 0; scene < files.size(); ++scene)
        for (std::size_t i = 0; i < files[scene]->_routes.size(); ++i) {
            const LocatedPair& route = files[scene]->_routes[i];
            routes.push_back({route._first._value, route._second._value, scene, std::nullopt, i});
        }
    for (const auto& [scene, handler, path] : placesOf(files)) {
        const WrittenHandler written = writtenHandler(files[scene]->_handlers[handler]);
        for (std::size_t i = 0; i < written._routes.size(); ++i)
            routes.push_back({pathBelow(path, written._routes[i]._from._value),
                              pathBelow(path, written._routes[i]._to._value), scene, handler, i});
    }
    return routes;
}

NamedRoute findRoute(const SceneFiles& files, const std::string& from, const std::string& to)
{
    const std::vector<NamedRoute> routes = namedRoutes(files);
    const NamedRoute* found = nullptr;
    const NamedRoute* other = nullptr;
    for (const NamedRoute& route : routes) {
        if (!names(from, route._from) || !names(to, route._to))
            continue;
        if (found && (found->_from != route._from || found->_to != route._to))
            other = found;
        found = &route;
        if (route._from == from && route._to == to) {
            other = nullptr;
            break;
        }
    }
    if (!found)
        throw NoSuchPart("no route of a scene leads from " + inQuotes(from) + " to " + inQuotes(to) +
                         nearestRoutes(routes, from, to));
    if (other)
        throw SceneError("several routes lead from " + inQuotes(from) + " to " + inQuotes(to) + "; say " +
                         quoted(*other) + ", or " + quoted(*found));
    return *found;
}

std::optional<HandlerPlace> commonHandler(const SceneFiles& files, const std::string& a, const std::string& b)
{
    const std::vector<HandlerPlace> places = placesOf(files);
    const auto found = std::ranges::find_if(places, [&](const HandlerPlace& place) {
        return a.starts_with(place._path + "/") && b.starts_with(place._path + "/");
    });
    return found == places.end() ? std::nullopt : std::optional(*found);
}
} // namespace Scenes
