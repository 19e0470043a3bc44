#include "monitor/answer/SlotMap.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "explain/text/NameHint.h"

#include <algorithm>
#include <unordered_set>

namespace Monitor {
namespace {

using Explain::inQuotes;
using Explain::pathBelow;

} // namespace

SlotMap::SlotMap(Trovio::NamespaceInfo root, Explain::ScenePlaces places)
    : _root(std::move(root)), _places(std::move(places))
{
    readSlots();
    indexNames();
    Explain::walkTree(_root, [this](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (!info._routes.empty())
            readRoutes(path, info);
    });
}

void SlotMap::readSlots()
{
    Explain::walkTree(_root, [this](const std::string& path, const Trovio::NamespaceInfo& info) {
        for (const Trovio::SlotInfo& slot : info._slots) {
            if (!slot._own)
                continue;
            const std::string way = pathBelow(path, slot._label);
            if (!_byPath.emplace(way, _all.size()).second)
                continue; // a slash in a label made it look like one in a namespace
            _all.push_back({&slot, info._node ? &*info._node : nullptr, way});
            if (const auto* const sensor = _places.sensorAt(path, slot._label))
                _all.back()._sensor = titleOf(*sensor);
        }
    });
    std::unordered_set<std::string_view> taken; // of those who share a label, the first has it
    for (const Trovio::SlotInfo& view : _root._slots) {
        const auto at = _byPath.find(view._home);
        if (at == _byPath.end() || _all[at->second]._seen || !taken.insert(view._label).second)
            continue;
        _all[at->second]._seen = true;
        _all[at->second]._label = view._label;
    }
}

/// By each end of its label that begins behind a slash, and by its sensor.
void SlotMap::indexNames()
{
    for (std::size_t i = 0; i < _all.size(); ++i) {
        const std::string& label = _all[i]._label;
        _byName.emplace(label, i);
        for (std::size_t slash = label.find('/'); slash != std::string::npos; slash = label.find('/', slash + 1))
            _byName.emplace(label.substr(slash + 1), i);
        if (!_all[i]._sensor.empty() && !label.ends_with("/" + _all[i]._sensor) && label != _all[i]._sensor)
            _byName.emplace(_all[i]._sensor, i);
    }
}

void SlotMap::readRoutes(const std::string& path, const Trovio::NamespaceInfo& info)
{
    std::unordered_multimap<std::string, const Place*> seen;
    for (const Trovio::SlotInfo& slot : info._slots)
        if (const Place* const place = findByPath(pathBelow(path, slot._home)))
            seen.emplace(slot._label, place);
    const auto join = [&](const Trovio::RoutePair& pair) {
        const auto [fromBegin, fromEnd] = seen.equal_range(pair._from);
        const auto [toBegin, toEnd] = seen.equal_range(pair._to);
        for (auto from = fromBegin; from != fromEnd; ++from)
            for (auto to = toBegin; to != toEnd; ++to)
                if (from->second->isOut() && !to->second->isOut())
                    _joints.push_back({from->second, to->second});
    };
    for (const Trovio::RouteInfo& route : info._routes) {
        for (const Trovio::RoutePair& pair : route._pairs)
            if (pair._reason.empty())
                join(pair);
            else
                _gaps.push_back({pathBelow(path, pair._from), pathBelow(path, pair._to), pair._reason});
        if (route._pairs.empty())
            _gaps.push_back({pathBelow(path, route._from), pathBelow(path, route._to), route._reason});
    }
}

std::string SlotMap::shortLabelOf(const Place& place) const
{
    const std::size_t slash = place._label.find('/');
    const std::string rest = slash == std::string::npos ? std::string() : place._label.substr(slash + 1);
    return _byName.count(rest) == 1 ? rest : std::string();
}

const SlotMap::Place* SlotMap::find(const std::string& text, std::string& problem,
                                    std::optional<Trovio::Slot::Direction> wanted) const
{
    std::vector<const Place*> found;
    const auto [begin, end] = _byName.equal_range(text);
    for (auto named = begin; named != end; ++named)
        found.push_back(&_all[named->second]);
    const auto keep = [&found](const auto& isMeant) {
        if (std::ranges::any_of(found, isMeant))
            std::erase_if(found, [&](const Place* place) { return !isMeant(place); });
    };
    keep([&](const Place* place) { return place->_label == text; });
    if (wanted)
        keep([&](const Place* place) { return place->_slot->_direction == *wanted; });
    if (found.size() == 1 || (!found.empty() && found.front()->_label == text))
        return found.front();
    problem = whyNone(text, found);
    return nullptr;
}

const SlotMap::Place* SlotMap::findSensor(const std::string& text) const
{
    const Place* first = nullptr;
    const auto [begin, end] = _byName.equal_range(text);
    for (auto named = begin; named != end; ++named) {
        const Place& place = _all[named->second];
        if (place._sensor.empty() || (first && first->_sensor != place._sensor))
            return nullptr;
        first = !first || &place < first ? &place : first;
    }
    return first;
}

const SlotMap::Place* SlotMap::findByPath(const std::string& path) const
{
    const auto at = _byPath.find(path);
    return at == _byPath.end() ? nullptr : &_all[at->second];
}

std::string SlotMap::whyNone(const std::string& text, const std::vector<const Place*>& found) const
{
    constexpr std::size_t maxNames = 5;
    std::string names;
    for (std::size_t i = 0; i < std::min(maxNames, found.size()); ++i)
        names += (i == 0 ? "" : i + 1 == found.size() ? " or " : ", ") + inQuotes(found[i]->_label);
    if (found.size() > maxNames)
        names += " or one of " + std::to_string(found.size() - maxNames) + " more";
    if (!found.empty())
        return std::to_string(found.size()) + " slots are called " + inQuotes(text) + "; say " + names;
    std::vector<std::string_view> known;
    for (const auto& [name, place] : _byName)
        known.push_back(name);
    const std::string_view near = Explain::nearestName(text, known);
    return "no slot has the label " + inQuotes(text) +
           (near.empty() ? "; /slots lists all" : "; did you mean " + inQuotes(near) + "?");
}

std::vector<const SlotMap::Place*> SlotMap::sourcesOf(const Place& place) const
{
    if (place.isOut())
        return {&place};
    std::vector<const Place*> sources;
    for (const Joint& joint : _joints)
        if (joint._to == &place && std::ranges::find(sources, joint._from) == sources.end())
            sources.push_back(joint._from);
    return sources;
}

std::string SlotMap::titleOf(const Explain::ScenePlaces::Sensor& sensor) const
{
    return _places._scenes.size() < 2 ? sensor._name : _places._scenes.at(sensor._scene) + ": " + sensor._name;
}

} // namespace Monitor
