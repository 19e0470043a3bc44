#include "scene/change/Edits.h"

#include "explain/text/Escape.h"
#include "scene/change/MergedSettings.h"
#include "scene/change/NamedParts.h"
#include "scene/change/WrittenHandler.h"
#include "scene/file/ConversionParts.h"
#include "scene/file/RouteConversions.h"
#include "scene/file/SceneValidator.h"
#include "trovio/Exception.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

/// The files with another one in the place of one; it is made and checked as a reader does once all tables are read.
SceneFiles withFile(const SceneFiles& files, std::size_t place, SceneFile edited)
{
    Problems problems(edited._path);
    makeConversions(edited, {}, problems);
    validateScene(edited, problems);
    problems.throwIfAny();
    SceneFiles all = files;
    all[place] = std::make_shared<const SceneFile>(std::move(edited));
    return all;
}

/// What was written, so that it can be made again.
SceneFile unmade(const SceneFile& file)
{
    SceneFile written = file;
    for (HandlerEntry& handler : written._handlers)
        setWritten(handler, writtenHandler(handler));
    return written;
}

SceneFiles withHandler(const SceneFiles& files, std::size_t scene, std::size_t handler, WrittenHandler written)
{
    SceneFile edited = unmade(*files[scene]);
    setWritten(edited._handlers[handler], std::move(written));
    return withFile(files, scene, std::move(edited));
}

std::string merged(const std::string& node, std::string_view settings, const std::vector<Trovio::SettingText>& changed)
{
    try {
        return mergedSettings(settings, changed);
    } catch (const Trovio::InvalidFieldException& error) {
        throw SceneError("the settings that node " + inQuotes(node) +
                         " has in its scene cannot be "
                         "read: " +
                         escaped(error.getMessage(), 400) + "; mend them there");
    }
}

/// The conversion with other settings of one of its filters.
std::string withFilter(const std::string& conversion, std::size_t filter, const std::string& settings)
{
    std::string text;
    const std::vector<ConversionPart> parts = conversionParts(conversion);
    for (std::size_t i = 0; i < parts.size(); ++i) {
        std::string_view own = i == filter ? std::string_view(settings) : parts[i]._settings;
        own = own.substr(0, own.find_last_not_of(" \t\r\n") + 1);
        text.append(i == 0 ? "" : " | ").append(parts[i]._node).append(own.empty() ? "" : " ").append(own);
    }
    return text;
}

std::string routeText(const std::string& from, const std::string& to)
{
    return "the route from " + inQuotes(from) + " to " + inQuotes(to);
}

void checkSettings(const std::string& label, const std::vector<Trovio::SettingText>& settings)
{
    if (settings.empty())
        throw SceneError("nothing is to be set; say name=value, such as gain=2");
    for (const auto& [name, value] : settings) {
        if (name.empty() || name.find_first_of(" \t\r\n='\"") != std::string::npos)
            throw SceneError(inQuotes(name) + " is no name of a setting; allowed are names without "
                                              "blanks, quotes and '=', such as those that ostrel-host nodes shows");
        if (name == "label")
            throw SceneError("'label' of node " + inQuotes(label) +
                             " stays as it is, for routes name it; write another one into the "
                             "scene file, and reload that");
    }
}

} // namespace

SceneFiles withSettings(const SceneFiles& files, const std::string& label,
                        const std::vector<Trovio::SettingText>& settings)
{
    const NamedNode node = findNode(files, label);
    checkSettings(node._label, settings);
    WrittenHandler written = writtenHandler(files[node._scene]->_handlers[node._handler]);
    if (node._node < written._nodes.size()) {
        LocatedText& own = written._nodes[node._node]._second;
        own._value = merged(node._label, own._value, settings);
    } else {
        const WrittenHandler::Filter filter = written.filterOf(node._node);
        std::string& conversion = written._routes[filter._route]._conversion._value;
        const std::string_view own = conversionParts(conversion)[filter._number]._settings;
        conversion = withFilter(conversion, filter._number, merged(node._label, own, settings));
    }
    return withHandler(files, node._scene, node._handler, std::move(written));
}

SceneFiles withRoute(const SceneFiles& files, const std::string& from, const std::string& to,
                     const std::string& conversion)
{
    const auto isSame = [&](const NamedRoute& route) { return route._from == from && route._to == to; };
    if (std::ranges::any_of(namedRoutes(files), isSame))
        throw PartInTheWay(routeText(from, to) + " is there already; for another conversion remove it first");
    if (const auto home = commonHandler(files, from, to)) {
        const std::size_t prefix = home->_path.size() + 1;
        const HandlerEntry& handler = files[home->_scene]->_handlers[home->_handler];
        const Position at = handler._name._position; // for messages
        WrittenHandler written = writtenHandler(handler);
        written._routes.push_back({{from.substr(prefix), at}, {to.substr(prefix), at}, {conversion, at}});
        return withHandler(files, home->_scene, home->_handler, std::move(written));
    }
    if (!conversion.empty())
        throw SceneError(routeText(from, to) + " leads from one handler to another, where no conversion can stand; put "
                                               "a filter into one of them by its scene file");
    const auto home = commonHandler(files, to, to);
    const std::size_t scene = home ? home->_scene : 0;
    SceneFile edited = unmade(*files[scene]);
    constexpr Position fileBegin{1, 1};
    edited._routes.push_back({{from, fileBegin}, {to, fileBegin}});
    return withFile(files, scene, std::move(edited));
}

SceneFiles withoutRoute(const SceneFiles& files, const std::string& from, const std::string& to)
{
    const NamedRoute route = findRoute(files, from, to);
    const auto number = static_cast<std::ptrdiff_t>(route._route);
    if (!route._handler) {
        SceneFile edited = unmade(*files[route._scene]);
        edited._routes.erase(edited._routes.begin() + number);
        return withFile(files, route._scene, std::move(edited));
    }
    WrittenHandler written = writtenHandler(files[route._scene]->_handlers[*route._handler]);
    written._routes.erase(written._routes.begin() + number);
    return withHandler(files, route._scene, *route._handler, std::move(written));
}
} // namespace Scenes
