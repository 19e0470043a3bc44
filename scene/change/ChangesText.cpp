#include "scene/change/ChangesText.h"

#include "explain/text/Escape.h"
#include "scene/change/WrittenHandler.h"
#include "scene/toml/Problems.h"

#include <algorithm>
#include <cstdio>

namespace Scenes {

using namespace Explain;

namespace {

std::string escapedForToml(std::string_view text)
{
    std::string escaped;
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        char number[8];
        if (byte == '"' || byte == '\\')
            escaped.append({'\\', byte});
        else if (byte == '\n')
            escaped += "\\n";
        else if (byte == '\t')
            escaped += "\\t";
        else if (code < 0x20 || code == 0x7F)
            escaped.append(number, static_cast<std::size_t>(std::snprintf(number, sizeof number, "\\u%04X", code)));
        else
            escaped += byte;
    }
    return escaped;
}

std::string tomlText(std::string_view text)
{
    return "\"" + escapedForToml(text) + "\"";
}

std::string textOf(const LocatedPair& node)
{
    const std::string& settings = node._second._value;
    return "[" + tomlText(node._first._value) + (settings.empty() ? "" : ", " + tomlText(settings)) + "],";
}

std::string textOf(const WrittenRoute& route)
{
    const std::string& conversion = route._conversion._value;
    return "[" + tomlText(route._from._value) + ", " + tomlText(route._to._value) +
           (conversion.empty() ? "" : ", " + tomlText(conversion)) + "],";
}

std::string textOf(const LocatedPair& route, std::string_view lineBegin)
{
    std::string text;
    for (const std::string& line : {std::string("[[route]]"), "from = " + tomlText(route._first._value),
                                    "to = " + tomlText(route._second._value)})
        text.append(text.empty() ? "" : "\n").append(lineBegin).append(line);
    return text;
}

WrittenRoute rootRoute(const LocatedPair& route)
{
    return {route._first, route._second, {}};
}

class Changes {
public:
    Changes(const SceneFile& loaded, const SceneFile& now) : _loaded(loaded), _now(now) {}

    std::string text(const std::map<std::string, std::string>& values)
    {
        for (std::size_t i = 0; i < std::min(_loaded._handlers.size(), _now._handlers.size()); ++i)
            addHandler(_loaded._handlers[i], _now._handlers[i]);
        for (const SensorEntry& sensor : _loaded._sensors)
            if (const auto given = values.find(sensor._name._value); given != values.end())
                add(sensor._name._position, "the value of sensor " + inQuotes(sensor._name._value),
                    "value = " + given->second);
        addRootRoutes();
        return std::move(_text);
    }

private:
    void add(Position place, const std::string& what, const std::string& lines)
    {
        _text += (_text.empty() ? "# " : "\n# ") + placeText(_loaded._path, place) + ": " + what + "\n" + lines + "\n";
    }

    void addHandler(const HandlerEntry& loaded, const HandlerEntry& now)
    {
        const std::string whose = " of handler " + inQuotes(loaded._name._value);
        const WrittenHandler before = writtenHandler(loaded), after = writtenHandler(now);
        for (std::size_t i = 0; i < std::min(before._nodes.size(), after._nodes.size()); ++i)
            if (before._nodes[i]._second._value != after._nodes[i]._second._value)
                add(before._nodes[i]._first._position, "in place of this node" + whose, textOf(after._nodes[i]));
        compare(
            before._routes, after._routes,
            [&](const WrittenRoute& old, const WrittenRoute& route) {
                add(old._from._position, "in place of this route" + whose, textOf(route));
            },
            [&](const WrittenRoute& old) {
                add(old._from._position, "without this route" + whose, "# " + textOf(old));
            },
            [&](const WrittenRoute& route) {
                add(loaded._name._position, "one more, behind the other routes" + whose, textOf(route));
            });
    }

    void addRootRoutes()
    {
        std::vector<WrittenRoute> before, after;
        std::ranges::transform(_loaded._routes, std::back_inserter(before), rootRoute);
        std::ranges::transform(_now._routes, std::back_inserter(after), rootRoute);
        compare(
            before, after, [](const WrittenRoute&, const WrittenRoute&) {},
            [&](const WrittenRoute& old) {
                add(old._from._position, "without this route of the root", textOf({old._from, old._to}, "# "));
            },
            [&](const WrittenRoute& route) {
                add({}, "one more table, behind all others", textOf({route._from, route._to}, ""));
            });
    }

    /// Whoever edits takes routes out, changes their conversions or puts new ones behind all others, so that those that
    /// stayed are in the old order.
    template <class Replaced, class Gone, class Come>
    static void compare(const std::vector<WrittenRoute>& before, const std::vector<WrittenRoute>& after,
                        const Replaced& replaced, const Gone& gone, const Come& come)
    {
        auto old = before.begin();
        for (const WrittenRoute& route : after) {
            const auto same = std::find_if(old, before.end(), [&route](const WrittenRoute& one) {
                return one._from._value == route._from._value && one._to._value == route._to._value;
            });
            if (same == before.end()) {
                come(route);
                continue;
            }
            std::for_each(old, same, gone);
            if (same->_conversion._value != route._conversion._value)
                replaced(*same, route);
            old = same + 1;
        }
        std::for_each(old, before.end(), gone);
    }

    const SceneFile &_loaded, &_now;
    std::string _text;
};
} // namespace

std::string changesText(const SceneFile& loaded, const SceneFile& now, const std::map<std::string, std::string>& values)
{
    return Changes(loaded, now).text(values);
}
} // namespace Scenes
