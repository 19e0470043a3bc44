#include "trovio/Scope.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/FrameworkLog.h"

namespace Trovio {

namespace {

/// Calls visit for everything kept under label. visit may not add or remove there.
template <class Map, class Visit>
void forEachUnder(Map& map, const std::string& label, Visit visit)
{
    if (const auto found = map.find(label); found != map.end()) {
        for (auto& [serial, thing] : found->second)
            visit(thing);
    }
}

template <class Map>
void eraseUnder(Map& map, const std::string& label, std::uint64_t serial)
{
    const auto found = map.find(label);
    found->second.erase(serial);
    if (found->second.empty())
        map.erase(found);
}

} // namespace

std::uint64_t Scope::_nextSerial = 1;

void Scope::addSlot(const std::string& label, BasicInSlot& slot)
{
    addOwn(label, {&slot, &slot, nullptr, _relay.get()});
}

void Scope::addSlot(const std::string& label, BasicOutSlot& slot)
{
    addOwn(label, {&slot, nullptr, &slot, _relay.get()});
}

void Scope::addOwn(const std::string& label, const Ends& ends)
{
    if (label.empty() || label.size() > MaxLabelLength)
        throw Exception("a slot label has " + std::to_string(label.size()) + " bytes; allowed are 1 to " +
                        std::to_string(MaxLabelLength));
    bool taken = false;
    forEachUnder(_entries, label, [&taken](const Entry& entry) { taken = taken || !entry._shownBy; });
    if (taken)
        throw Exception("slot label '" + label + "' is taken; remove that slot first or use another label");
    insert(label, ends, nullptr, nullptr);
}

void Scope::removeSlot(const std::string& label)
{
    Entry* own = nullptr;
    forEachUnder(_entries, label, [&own](Entry& entry) { own = entry._shownBy ? own : &entry; });
    if (own)
        erase(*own);
    retryLooping();
}

void Scope::addRoute(const std::string& from, const std::string& to)
{
    auto made = std::make_unique<Route>(_nextSerial++, from, to, LabelTemplate::Placeholders::None);
    const std::vector<Entry*> entries = matching(made->_from);
    refuseLoop(*made, entries);
    Route& route = _routes.add(std::move(made));
    for (Entry* entry : entries)
        aim(route, *entry, *route._from.match(*entry->_label));
}

bool Scope::removeRoute(const std::string& from, const std::string& to)
{
    const auto route = _routes.take(from, to);
    if (!route)
        return false;
    while (!route->_aims.empty())
        drop(**route->_aims.begin());
    retryLooping();
    return true;
}

void Scope::addExternalRoute(const std::string& pattern, const std::string& target)
{
    ExternalRoute& route = _externalRoutes.add(
        std::make_unique<ExternalRoute>(_nextSerial++, pattern, target, LabelTemplate::Placeholders::NamespaceAndSlot));
    for (Entry* entry : matching(route._from))
        show(route, *entry, *route._from.match(*entry->_label));
}

bool Scope::removeExternalRoute(const std::string& pattern, const std::string& target)
{
    const auto route = _externalRoutes.take(pattern, target);
    if (!route)
        return false;
    while (!route->_shown.empty())
        _parent->erase(**route->_shown.begin());
    retryLooping();
    return true;
}

void Scope::attach(Scope& parent, const std::string& label)
{
    _parent = &parent;
    _label = label;
    for (ExternalRoute* route : _externalRoutes.all()) {
        for (Entry* entry : matching(route->_from))
            show(*route, *entry, *route->_from.match(*entry->_label));
    }
}

void Scope::detach()
{
    for (ExternalRoute* route : _externalRoutes.all()) {
        while (!route->_shown.empty())
            _parent->erase(**route->_shown.begin());
    }
    _parent = nullptr;
    _label.clear();
    retryLooping();
}

void Scope::clear()
{
    setConnecting(false);
    _aims.clear();
    _entries.clear();
    _routes.clear();
    _externalRoutes.clear();
    setConnecting(true);
}

Scope::Entry& Scope::insert(const std::string& label, const Ends& ends, ExternalRoute* shownBy, Entry* origin)
{
    const std::uint64_t serial = _nextSerial++;
    const auto place = _entries.try_emplace(label).first;
    Entry& entry = place->second.try_emplace(serial, Entry{serial, this, &place->first, ends, shownBy, origin, {}, {}})
                       .first->second;

    forEachUnder(_aims, label, [&](const Aim& aim) { join(aim, entry); });
    _routes.forEachMatch(label, [&](Route& route, const auto& matched) { aim(route, entry, matched); });
    _externalRoutes.forEachMatch(label,
                                 [&](ExternalRoute& route, const auto& matched) { show(route, entry, matched); });
    return entry;
}

void Scope::erase(Entry& entry)
{
    while (!entry._shown.empty())
        _parent->erase(**entry._shown.begin());
    while (!entry._aims.empty())
        drop(**entry._aims.begin());
    forEachUnder(_aims, *entry._label, [&](const Aim& aim) { part(aim, entry); });
    if (entry._shownBy) {
        entry._shownBy->_shown.erase(&entry);
        entry._origin->_shown.erase(&entry);
    }
    eraseUnder(_entries, *entry._label, entry._serial);
}

void Scope::aim(Route& route, Entry& from, const std::vector<std::string_view>& matched)
{
    if (!from._ends._out) {
        if (route._from.isLiteral()) // a pattern may well match in-slots beside the out-slots that it is meant for
            report(route, wrongWay(route, *from._label, "an in-slot", "out-slot"));
        return;
    }
    const auto target = route._to.expand(matched);
    if (!target || target->empty()) {
        report(route, tooLong(route, *from._label));
        return;
    }
    const std::uint64_t serial = _nextSerial++;
    const auto place = _aims.try_emplace(*target).first;
    Aim& made = place->second.try_emplace(serial, Aim{serial, &place->first, &route, &from}).first->second;
    route._aims.insert(&made);
    from._aims.insert(&made);
    forEachUnder(_entries, *target, [&](const Entry& to) { join(made, to); });
}

void Scope::drop(Aim& aim)
{
    forEachUnder(_entries, *aim._target, [&](const Entry& to) { part(aim, to); });
    aim._route->_aims.erase(&aim);
    aim._from->_aims.erase(&aim);
    eraseUnder(_aims, *aim._target, aim._serial);
}

void Scope::show(ExternalRoute& route, Entry& entry, const std::vector<std::string_view>& matched)
{
    if (!_parent)
        return;
    const auto label = route._to.expand(matched, _label, *entry._label);
    if (!label || label->empty()) {
        logMessage(LogLevel::Warning, "namespace '" + _label + "', external " + tooLong(route, *entry._label));
        return;
    }
    Entry& shown = _parent->insert(*label, entry._ends, &route, &entry);
    route._shown.insert(&shown);
    entry._shown.insert(&shown);
}

std::vector<Scope::Entry*> Scope::matching(const Pattern& pattern)
{
    std::vector<Entry*> entries;
    if (pattern.isLiteral()) {
        forEachUnder(_entries, pattern.getText(), [&](Entry& entry) { entries.push_back(&entry); });
        return entries;
    }
    for (auto& [label, same] : _entries) {
        if (!pattern.match(label))
            continue;
        for (auto& [serial, entry] : same)
            entries.push_back(&entry);
    }
    std::sort(entries.begin(), entries.end(), BySerial());
    return entries;
}

} // namespace Trovio
