#include "scene/change/Edits.h"

#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"
#include "scene/change/HandlerLabels.h"
#include "scene/file/SettingsText.h"
#include "trovio/Exception.h"
#include "trovio/Labels.h"
#include "trovio/Namespace.h"
#include "trovio/settings/SettingsParser.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

/// A handler with a namespace.
struct Space {
    std::size_t _scene, _handler;
    std::string _label;
};

std::vector<Space> spacesOf(const SceneFiles& files)
{
    std::vector<Space> spaces;
    const auto labels = handlerLabels(files);
    for (std::size_t scene = 0; scene < labels.size(); ++scene)
        for (std::size_t handler = 0; handler < labels[scene].size(); ++handler)
            if (!labels[scene][handler].empty())
                spaces.push_back({scene, handler, labels[scene][handler]});
    return spaces;
}

bool isBelow(const Space& space, const std::string& label)
{
    return label.starts_with(space._label + "/");
}

/// The files with a copy of one of them, which is put into place and may be changed.
SceneFile& copyOf(SceneFiles& files, std::size_t scene)
{
    auto copy = std::make_shared<SceneFile>(*files[scene]);
    files[scene] = copy;
    return *copy;
}

/// A node by its place in the list of its handler.
struct NodePlace {
    Space _space;
    std::size_t _node;
};

NodePlace nodeAt(const SceneFiles& files, const std::string& label)
{
    std::vector<NodePlace> found;
    std::vector<std::string> all;
    for (const Space& space : spacesOf(files)) {
        const std::vector<LabelledNode> nodes = labelledNodes(files[space._scene]->_handlers[space._handler]);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            all.push_back(nodes[i]._label);
            if (label == nodes[i]._label || label == space._label + "/" + nodes[i]._label)
                found.push_back({space, i});
        }
    }
    if (found.size() == 1)
        return found.front();
    if (!found.empty())
        throw SceneError(std::to_string(found.size()) + " handlers have a node " + inQuotes(label) +
                         "; put the label of the handler before it, such as " +
                         inQuotes(found.front()._space._label + "/" + label));
    const std::vector<std::string_view> names(all.begin(), all.end());
    throw NoSuchPart("no node of the scene has the label " + inQuotes(label) + nearestHint(label, names));
}

/// As people write it: in quotes only where it needs them.
std::string plainText(const std::string& name, const std::string& value)
{
    const bool isPlain = !value.empty() && value.find_first_of(" \t\r\n'\"\\") == std::string::npos;
    return isPlain ? name + "=" + value : settingText(name, value);
}

std::string withNewValues(const std::string& text, const std::vector<Trovio::SettingText>& given)
{
    std::vector<Trovio::SettingText> all = Trovio::parseSettings(text);
    for (const auto& [name, value] : given) {
        const auto old = std::ranges::find(all, name, &Trovio::SettingText::first);
        if (old != all.end())
            old->second = value;
        else
            all.emplace_back(name, value);
    }
    std::string result;
    for (const auto& [name, value] : all)
        result.append(result.empty() ? "" : " ").append(plainText(name, value));
    return result;
}

/// A route as it is to stand in a handler, or in the root of the first scene.
struct RoutePlace {
    std::optional<Space> _space;
    LocatedPair _route;

    std::vector<LocatedPair>& routes(SceneFile& file) const
    {
        return _space ? file._handlers[_space->_handler]._routes : file._routes;
    }
};

LocatedPair pairOf(const std::string& from, const std::string& to)
{
    return {{from, {}}, {to, {}}};
}

/// Labels without that of a handler mean those of the only handler that there is.
RoutePlace placeOf(const SceneFiles& files, const std::string& from, const std::string& to)
{
    const std::vector<Space> spaces = spacesOf(files);
    for (const Space& space : spaces)
        if (isBelow(space, from) && isBelow(space, to)) {
            const std::size_t start = space._label.size() + 1;
            return {space, pairOf(from.substr(start), to.substr(start))};
        }
    const auto isWhole = [&spaces](const std::string& label) {
        return std::ranges::any_of(spaces, [&label](const Space& space) { return isBelow(space, label); });
    };
    if (isWhole(from) || isWhole(to))
        return {std::nullopt, pairOf(from, to)};
    if (spaces.size() == 1)
        return {spaces.front(), pairOf(from, to)};
    throw SceneError("the route from " + inQuotes(from) + " to " + inQuotes(to) + " may stand in each of " +
                     std::to_string(spaces.size()) + " handlers; begin both labels with that of one, such as " +
                     inQuotes(spaces.empty() ? "Context" : spaces.front()._label));
}

void checkEnds(const std::string& from, const std::string& to)
{
    for (const std::string* const end : {&from, &to})
        if (Trovio::isForTools(*end))
            throw SceneError("the end " + inQuotes(*end) +
                             " of a route cannot be used: labels that begin with '@' belong to tools; use another");
    try {
        Trovio::Namespace().addRoute(from, to);
    } catch (const Trovio::Exception& error) {
        throw SceneError("the route from " + inQuotes(from) + " to " + inQuotes(to) +
                         " cannot be used: " + escaped(error.getMessage(), 400));
    }
}

bool isRoute(const LocatedPair& one, const LocatedPair& other)
{
    return one._first._value == other._first._value && one._second._value == other._second._value;
}
} // namespace

SceneFiles withSettings(const SceneFiles& files, const std::string& label, const std::string& settings)
{
    const NodePlace place = nodeAt(files, label);
    SceneFiles changed = files;
    SceneFile& file = copyOf(changed, place._space._scene);
    LocatedText& text = file._handlers[place._space._handler]._nodes[place._node]._second;
    try {
        const std::vector<Trovio::SettingText> given = Trovio::parseSettings(settings);
        if (std::ranges::any_of(given, [](const Trovio::SettingText& one) { return one.first == "label"; }))
            throw SceneError("'label' of node " + inQuotes(label) +
                             " cannot be changed while it runs; allowed: its other settings");
        text._value = withNewValues(text._value, given);
    } catch (const Trovio::InvalidFieldException& error) {
        throw SceneError("the settings " + inQuotes(settings) + " for node " + inQuotes(label) +
                         " cannot be read: " + escaped(error.getMessage(), 400));
    }
    return changed;
}

SceneFiles withRoute(const SceneFiles& files, const std::string& from, const std::string& to)
{
    checkEnds(from, to);
    const RoutePlace place = placeOf(files, from, to);
    SceneFiles changed = files;
    SceneFile& file = copyOf(changed, place._space ? place._space->_scene : 0);
    place.routes(file).push_back(place._route);
    return changed;
}

SceneFiles withoutRoute(const SceneFiles& files, const std::string& from, const std::string& to)
{
    const RoutePlace place = placeOf(files, from, to), inRoot{std::nullopt, pairOf(from, to)};
    for (const RoutePlace& where : {place, inRoot})
        for (std::size_t scene = 0; scene < files.size(); ++scene) {
            if (where._space && where._space->_scene != scene)
                continue;
            SceneFiles changed = files;
            std::vector<LocatedPair>& routes = where.routes(copyOf(changed, scene));
            const auto last = std::find_if(routes.rbegin(), routes.rend(),
                                           [&](const LocatedPair& route) { return isRoute(route, where._route); });
            if (last == routes.rend())
                continue;
            routes.erase(std::next(last).base());
            return changed;
        }
    throw NoSuchPart("there is no route from " + inQuotes(from) + " to " + inQuotes(to) +
                     "; 'ostrel-host graph' shows those that there are");
}
} // namespace Scenes
