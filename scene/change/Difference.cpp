#include "scene/change/Difference.h"

#include "explain/text/Escape.h"
#include "scene/change/HandlerLabels.h"
#include "scene/change/SameValue.h"

#include <algorithm>
#include <map>
#include <unordered_map>

namespace Scenes {

using namespace Explain;

namespace {

using Labels = std::vector<std::string>;
using Ends = std::pair<std::string_view, std::string_view>;

std::string fromTo(const std::string& what, const std::string& before, const std::string& after)
{
    return what + " " + inQuotes(before) + " -> " + inQuotes(after);
}

Ends endsOf(const LocatedPair& pair)
{
    return {pair._first._value, pair._second._value};
}

/// Those of `list` that are there more often than in `others`.
void addMore(const std::vector<LocatedPair>& list, const std::vector<LocatedPair>& others, const std::string& handler,
             bool isNew, std::vector<RouteChange>& changes)
{
    std::map<Ends, std::size_t> known;
    for (const LocatedPair& other : others)
        ++known[endsOf(other)];
    for (const LocatedPair& pair : list) {
        const auto found = known.find(endsOf(pair));
        if (found == known.end() || found->second == 0)
            changes.push_back({handler, pair, isNew});
        else
            --found->second;
    }
}

void addPairs(const std::vector<LocatedPair>& before, const std::vector<LocatedPair>& after, const std::string& handler,
              std::vector<RouteChange>& changes)
{
    addMore(before, after, handler, false, changes);
    addMore(after, before, handler, true, changes);
}

bool isAlike(const LabelledNode& one, const LabelledNode& other)
{
    return one._entry->_first._value == other._entry->_first._value && one._settings == other._settings;
}

std::vector<NodeChange> nodeChanges(const HandlerEntry& before, const HandlerEntry& after)
{
    std::map<std::string, NodeChange> byLabel;
    for (const LabelledNode& node : labelledNodes(before))
        byLabel[node._label] = {after._name._value, node._label, node, {}};
    for (const LabelledNode& node : labelledNodes(after)) {
        NodeChange& change = byLabel.try_emplace(node._label).first->second;
        if (change._before && isAlike(*change._before, node))
            byLabel.erase(node._label);
        else
            change = {after._name._value, node._label, change._before, node};
    }
    std::vector<NodeChange> changes;
    changes.reserve(byLabel.size());
    for (auto& [label, change] : byLabel)
        changes.push_back(std::move(change));
    return changes;
}

/// Why a handler cannot stay as it is; empty where it can. Without a namespace there is no way to take a part away.
std::string whyAnew(const HandlerEntry& before, const std::string& labelBefore, const HandlerEntry& after,
                    const std::string& labelAfter)
{
    if (before._kind._value != after._kind._value)
        return fromTo("kind", before._kind._value, after._kind._value);
    if (before._url._value != after._url._value)
        return fromTo("url", before._url._value, after._url._value);
    if (labelBefore != labelAfter)
        return fromTo("label", labelBefore, labelAfter);
    std::vector<RouteChange> routes;
    addPairs(before._routes, after._routes, {}, routes);
    const bool isSame = !labelAfter.empty() || (routes.empty() && nodeChanges(before, after).empty());
    return isSame ? std::string() : "its nodes or routes have changed, of which one cannot be taken away";
}

void compareHandlers(const Labels& labelsBefore, const Labels& labelsAfter, SceneDifference& difference)
{
    std::unordered_map<std::string_view, std::size_t> before;
    const std::vector<HandlerEntry>&all = difference._before->_handlers, &others = difference._after->_handlers;
    for (std::size_t i = 0; i < all.size(); ++i)
        before.emplace(all[i]._name._value, i);
    for (std::size_t i = 0; i < others.size(); ++i) {
        const auto found = before.find(others[i]._name._value);
        if (found == before.end()) {
            difference._handlers.push_back({nullptr, &others[i]});
            continue;
        }
        const HandlerEntry& old = all[found->second];
        if (const std::string why = whyAnew(old, labelsBefore[found->second], others[i], labelsAfter[i]);
            !why.empty()) {
            difference._handlers.push_back({&old, &others[i], why});
        } else {
            std::ranges::move(nodeChanges(old, others[i]), std::back_inserter(difference._nodes));
            addPairs(old._routes, others[i]._routes, old._name._value, difference._routes);
        }
        before.erase(found);
    }
    for (const HandlerEntry& old : all)
        if (before.contains(old._name._value))
            difference._handlers.push_back({&old, nullptr});
}

std::string whyAnew(const SensorEntry& before, const SensorEntry& after)
{
    if (before._type._value != after._type._value)
        return fromTo("type", before._type._value, after._type._value);
    if (before._label._value != after._label._value)
        return fromTo("label", before._label._value, after._label._value);
    if (before._description._value != after._description._value)
        return fromTo("description", before._description._value, after._description._value);
    if (before._buffer._value != after._buffer._value)
        return "buffer " + std::to_string(before._buffer._value) + " -> " + std::to_string(after._buffer._value);
    if (before._output._value != after._output._value)
        return after._output._value ? "output false -> true" : "output true -> false";
    return {};
}

void compareSensors(SceneDifference& difference)
{
    std::unordered_map<std::string_view, const SensorEntry*> before;
    for (const SensorEntry& sensor : difference._before->_sensors)
        before.emplace(sensor._name._value, &sensor);
    for (const SensorEntry& sensor : difference._after->_sensors) {
        const auto found = before.find(sensor._name._value);
        if (found == before.end()) {
            difference._sensors.push_back({nullptr, &sensor});
            continue;
        }
        const SensorEntry& old = *found->second;
        if (const std::string why = whyAnew(old, sensor); !why.empty())
            difference._sensors.push_back({&old, &sensor, why});
        else if (sensor._value && (!old._value || !isSameValue(*old._value, *sensor._value)))
            difference._values.push_back({&old, &sensor, "value"});
        before.erase(found);
    }
    for (const SensorEntry& old : difference._before->_sensors)
        if (before.contains(old._name._value))
            difference._sensors.push_back({&old, nullptr});
}

void compareHost(SceneDifference& difference)
{
    const HostEntry &before = difference._before->_host, &after = difference._after->_host;
    if (before._rate._value != after._rate._value) {
        char text[100];
        std::snprintf(text, sizeof text, "rate %g -> %g frames a second", before._rate._value, after._rate._value);
        difference._settings.emplace_back(text);
    }
    if (before._monitor._value != after._monitor._value)
        difference._settings.push_back(fromTo("monitor", before._monitor._value, after._monitor._value) +
                                       ": takes effect at the next start");
}
} // namespace

bool SceneDifference::isEmpty() const
{
    return _handlers.empty() && _nodes.empty() && _sensors.empty() && _values.empty() && _routes.empty() &&
           _links.empty() && _settings.empty();
}

std::vector<SceneDifference> differences(const SceneFiles& before, const SceneFiles& after)
{
    const std::vector<Labels> labelsBefore = handlerLabels(before), labelsAfter = handlerLabels(after);
    std::vector<SceneDifference> all;
    for (std::size_t i = 0; i < after.size(); ++i) {
        SceneDifference& difference = all.emplace_back();
        difference._before = before[i];
        difference._after = after[i];
        if (before[i] == after[i] && labelsBefore[i] == labelsAfter[i])
            continue;
        compareHost(difference);
        compareHandlers(labelsBefore[i], labelsAfter[i], difference);
        compareSensors(difference);
        addPairs(before[i]->_routes, after[i]->_routes, {}, difference._routes);
        addPairs(before[i]->_links, after[i]->_links, {}, difference._links);
    }
    return all;
}
} // namespace Scenes
