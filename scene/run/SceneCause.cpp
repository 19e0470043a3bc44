#include "scene/run/SceneCause.h"

#include "explain/text/Escape.h"
#include "scene/parts/NodeLabels.h"
#include "scene/parts/SceneParts.h"
#include "scene/toml/Problems.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Scenes {

using namespace Explain;

namespace {

using Trovio::Explanation;
using Trovio::Verdict;

/// The label as the handler sees it: without that of its namespace before it.
std::string within(const LoadedHandler& handler, const std::string& label)
{
    const bool isFull = !handler._namespace.empty() && label.starts_with(handler._namespace + "/");
    return isFull ? label.substr(handler._namespace.size() + 1) : label;
}

/// What the start said of the part of the scene at that place; empty if it was made.
std::string whyMissing(const LoadedScene& scene, Position position)
{
    const auto found = std::ranges::find(scene.missing(), position, &MissingPart::_position);
    return found == scene.missing().end() ? std::string()
                                          : placeText(scene.file()._path, position) + ": " + found->_text;
}

std::string whyNoBridge(const LoadedScene& scene, const LoadedHandler& handler)
{
    const LocatedText& kind = handler._entry->_kind;
    const std::string why = whyMissing(scene, kind._position);
    return !why.empty() ? why
                        : placeText(scene.file()._path, kind._position) + ": handler " +
                              inQuotes(handler._entry->_name._value) + " is of kind " + inQuotes(kind._value);
}

/// Why the handler has nothing under the label: it could not be made itself, or the node that should stand there.
std::string whyNotIn(const LoadedScene& scene, const LoadedHandler& handler, const std::string& label)
{
    const std::string inside = within(handler, label);
    if (handler._handler == nullptr && inside != label)
        return whyNoBridge(scene, handler);
    for (const LabelledNode& node : labelledNodes(*handler._entry))
        if (inside == node._label || inside.starts_with(node._label + "/"))
            return handler._handler == nullptr ? whyNoBridge(scene, handler)
                                               : whyMissing(scene, node._entry->_first._position) +
                                                     whyMissing(scene, node._entry->_second._position);
    return {};
}

/// Why nothing stands under the label: the node that should, its handler, or all handlers.
std::string whyNotMade(const Session& session, const std::string& label)
{
    bool hasBridge = false;
    std::string handlers;
    for (const auto& scene : session.scenes())
        for (const LoadedHandler& handler : scene->handlers()) {
            hasBridge = hasBridge || (handler._handler != nullptr && !handler._namespace.empty());
            handlers += "; " + whyNoBridge(*scene, handler);
            if (const std::string why = whyNotIn(*scene, handler, label); !why.empty())
                return why;
        }
    if (hasBridge)
        return {};
    return "the scene has no handler of kind 'Trovio', without which no sensor has a slot" + handlers;
}

const SensorEntry* findSensor(const Session& session, const std::string& text, LocatedText SensorEntry::*key,
                              const SceneFile*& file)
{
    for (const auto& scene : session.scenes()) {
        file = &scene->file();
        for (const SensorEntry& sensor : file->_sensors)
            if ((sensor.*key)._value == text)
                return &sensor;
        for (const LoadedHandler& handler : scene->handlers())
            if (const std::string inside = within(handler, text); inside != text)
                if (const SensorEntry* const sensor = findSensor(session, inside, key, file))
                    return sensor;
    }
    return nullptr;
}

/// That a label is but the name of a sensor.
std::string whyOnlyName(const Session& session, const std::string& label)
{
    const SceneFile* file = nullptr;
    const SensorEntry* const sensor = findSensor(session, label, &SensorEntry::_name, file);
    if (!sensor)
        return {};
    const std::string where =
        inQuotes(label) + " is the name of a sensor (" + placeText(file->_path, sensor->_name._position);
    if (sensor->_label._value.empty())
        return where + ") that has no label, so nothing can reach it; give it one: label = \"" + escaped(label) + "\"";
    return where + "), and routes go by its label: " + inQuotes(sensor->_label._value);
}

/// That the sensor's own key makes it face the wrong way.
std::string whyWrongWay(const Session& session, const std::string& label)
{
    const SceneFile* file = nullptr;
    const SensorEntry* const sensor = findSensor(session, label, &SensorEntry::_label, file);
    if (!sensor)
        return {};
    const std::string who = "sensor " + inQuotes(sensor->_name._value) + " (label " + inQuotes(label) + ") is an ";
    if (!sensor->_output._value)
        return who + "input, but records come from an output; set output = true at " +
               placeText(file->_path, sensor->_name._position);
    return who + "output, but records go to an input; take output = true away at " +
           placeText(file->_path, sensor->_output._position);
}

/// That a sensor that was to take what comes from the out-slot with that label is an output, too.
std::string whyBothGive(const Session& session, const std::string& label, const Asked& asked)
{
    const SceneFile* file = nullptr;
    const SensorEntry* const sensor = findSensor(session, asked._from, &SensorEntry::_label, file);
    if (label != asked._to || !sensor || !sensor->_output._value)
        return {};
    return "; sensor " + inQuotes(sensor->_name._value) + " (label " + inQuotes(asked._from) +
           ") gives values, too; if it is to take those of " + inQuotes(label) + ", take output = true away at " +
           placeText(file->_path, sensor->_output._position) + " and swap the two ends";
}

/// Where to read which way the slots of a node can face.
std::string slotsOfNode(const Session& session, const std::string& label)
{
    for (const auto& scene : session.scenes())
        for (const LoadedHandler& handler : scene->handlers())
            for (const LabelledNode& node : labelledNodes(*handler._entry))
                if (within(handler, label).starts_with(node._label + "/"))
                    return "; ostrel-host nodes " + escaped(node._entry->_first._value) +
                           " says which slots such a node can have";
    return {};
}

Explanation replaced(Explanation found, Verdict verdict, const std::string& cause)
{
    const std::string before = std::string(toString(found._verdict)) + ": ";
    const std::size_t head = found._text.find(before);
    const std::string* const label = found.findText("label");
    const std::string* const other = verdict == found._verdict ? found.findText("other end") : nullptr;
    found._text = found._text.substr(0, head) + toString(verdict) + ": " + cause +
                  (other ? (cause.ends_with('?') ? " " : "; ") + *other : "");
    found._verdict = verdict;
    found._details = {{"label", label ? *label : std::string()}, {"reason", cause}};
    return found;
}

/// That no route leads from one end to the other, and why the one that looked as if it should carries nothing either.
Explanation withoutRoute(const Explanation& found, const std::string& why)
{
    Explanation answer = replaced(found, Verdict::NoRoute,
                                  "no route leads from " + inQuotes(*found.findText("cure from")) + " to " +
                                      inQuotes(*found.findText("cure to")) + "; " + *found.findText("route") +
                                      " begins elsewhere: " + why);
    for (const char* const name : {"cure from", "cure to", "cure in"})
        answer._details.push_back({name, *found.findText(name)});
    return answer;
}

/// The handler that has the very route, but not the slot where it starts or ends.
std::string otherHandler(const Explanation& found, const Session& session)
{
    const std::string *from = found.findText("cure from"), *to = found.findText("cure to");
    const std::string* const here = found.findText("cure in");
    for (const auto& scene : session.scenes())
        for (const LoadedHandler& handler : scene->handlers())
            for (const LocatedPair& route : handler._entry->_routes)
                if (handler._namespace != *here && route._first._value == *from && route._second._value == *to)
                    return "; handler " + inQuotes(handler._entry->_name._value) + " has this route, but " +
                           inQuotes(*from) + " does not stand there";
    return {};
}
} // namespace

Explanation inSceneWords(Explanation found, const Session& session, const Asked& asked)
{
    const std::string* const label = found.findText("label");
    if (!label || found._verdict == Verdict::Flowing)
        return found;
    if (const std::string why = whyNotMade(session, *label); !why.empty()) {
        const std::string* const start = found.findText("route from");
        if (!start || *start != *label || *label == asked._from)
            return replaced(std::move(found), Verdict::NotMade, why);
        // The route is not misspelt: it begins at another node than was asked about.
        return withoutRoute(found, why);
    }
    if (found._verdict == Verdict::NoSuchLabel)
        if (const std::string why = whyOnlyName(session, *label); !why.empty())
            return replaced(std::move(found), Verdict::NoSuchLabel,
                            "no slot has the label " + inQuotes(*label) + "; " + why);
    if (found._verdict == Verdict::WrongDirection && !found.findText("cure")) {
        if (const std::string why = whyWrongWay(session, *label); !why.empty())
            return replaced(std::move(found), Verdict::WrongDirection, why);
        if (!found.findText("cure in"))
            found._text += whyBothGive(session, *label, asked) + slotsOfNode(session, *label);
    }
    return found;
}

std::string missingRoute(const Explanation& explanation, const Session& session)
{
    const std::string* const space = explanation.findText("cure in");
    if (!space)
        return {};
    const std::string from = "\"" + escaped(*explanation.findText("cure from")) + "\"";
    const std::string to = "\"" + escaped(*explanation.findText("cure to")) + "\"";
    if (space->empty())
        return "write [[route]] from = " + from + " to = " + to;
    for (const auto& scene : session.scenes())
        for (const LoadedHandler& handler : scene->handlers())
            if (handler._namespace == *space)
                return "write [" + from + ", " + to + "] into the routes of handler " +
                       inQuotes(handler._entry->_name._value) + otherHandler(explanation, session);
    return {};
}

bool isSensor(const Session& session, const std::string& label)
{
    std::vector<std::string> prefixes{""};
    for (const Trovio::NamespaceInfo& handler : Trovio::Root::get().inspect()._children)
        prefixes.push_back(handler._label + "/");
    return std::ranges::any_of(session.watches(), [&](const SensorWatch* watch) {
        const std::string& known = watch->sensor().getLabel();
        return !known.empty() &&
               std::ranges::any_of(prefixes, [&](const std::string& prefix) { return label == prefix + known; });
    });
}
} // namespace Scenes
