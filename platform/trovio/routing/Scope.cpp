#include "trovio/routing/Scope.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/messages/FrameworkLog.h"
#include "trovio/routing/AllOrNone.h"
#include <algorithm>

namespace Trovio {

std::uint64_t Scope::_nextSerial = 1;

void Scope::addSlot(const std::string& label, BasicInSlot& slot)
{
    addOwn(label, {&slot, _relay.get()});
}

void Scope::addSlot(const std::string& label, BasicOutSlot& slot)
{
    addOwn(label, {&slot, _relay.get()});
}

void Scope::addOwn(const std::string& label, const Ends& ends)
{
    if (label.empty() || label.size() > MaxLabelLength)
        throw Exception("a slot label has " + std::to_string(label.size()) + " bytes; allowed are 1 to " +
                        std::to_string(MaxLabelLength));
    if (findOwn(label))
        throw Exception("slot label '" + label + "' is taken; remove that slot first or use another label");
    insert(label, ends, nullptr, nullptr);
}

Scope::Entry* Scope::findOwn(const std::string& label) const
{
    for (Entry* entry : _entries.under(label)) {
        if (!entry->_shownBy)
            return entry;
    }
    return nullptr;
}

void Scope::removeSlot(const std::string& label) noexcept
{
    if (Entry* const own = findOwn(label))
        erase(*own);
    retryLooping();
}

void Scope::addRoute(const std::string& from, const std::string& to)
{
    Route& route = _routes.make(from, _nextSerial++, to, LabelTemplate::Placeholders::None);
    try {
        const std::vector<Entry*> entries = matching(route._from);
        refuseLoop(route, entries);
        for (Entry* entry : entries)
            aim(route, *entry, *route._from.match(entry->_label));
    } catch (...) {
        erase(route);
        throw;
    }
}

bool Scope::removeRoute(const std::string& from, const std::string& to) noexcept
{
    Route* const route = _routes.find(from, to);
    if (!route)
        return false;
    erase(*route);
    retryLooping();
    return true;
}

void Scope::erase(Route& route) noexcept
{
    while (!route._aims.empty())
        drop(route._aims.front());
    _routes.erase(route);
}

void Scope::addExternalRoute(const std::string& pattern, const std::string& target)
{
    ExternalRoute& route =
        _externalRoutes.make(pattern, _nextSerial++, target, LabelTemplate::Placeholders::NamespaceAndSlot);
    try {
        for (Entry* entry : matching(route._from))
            show(route, *entry, *route._from.match(entry->_label));
    } catch (...) {
        hide(route);
        _externalRoutes.erase(route);
        throw;
    }
}

bool Scope::removeExternalRoute(const std::string& pattern, const std::string& target) noexcept
{
    ExternalRoute* const route = _externalRoutes.find(pattern, target);
    if (!route)
        return false;
    hide(*route);
    _externalRoutes.erase(*route);
    retryLooping();
    return true;
}

void Scope::attach(Scope& parent, const std::string& label)
{
    _label = label;
    _parent = &parent;
    try {
        for (ExternalRoute* route : _externalRoutes.all()) {
            for (Entry* entry : matching(route->_from))
                show(*route, *entry, *route->_from.match(entry->_label));
        }
    } catch (...) {
        detach();
        throw;
    }
}

void Scope::detach() noexcept
{
    for (ExternalRoute* route : _externalRoutes.all())
        hide(*route);
    _parent = nullptr;
    _label.clear();
    retryLooping();
}

void Scope::clear() noexcept
{
    stopConnecting();
    _aims.clear();
    _entries.clear();
    _routes.clear();
    _externalRoutes.clear();
    _connecting = true;
}

Scope::Entry& Scope::insert(std::string freshLabel, const Ends& ends, ExternalRoute* shownBy, Entry* origin)
{
    Entry& entry = _entries.make(std::move(freshLabel), *this, ends, shownBy, origin);
    try {
        allOrNone(
            _aims.under(entry._label), [&](const Aim& aim) { join(aim, entry); },
            [&](const Aim& aim) { part(aim, entry); });
    } catch (...) {
        _entries.erase(entry, entry._label);
        throw;
    }
    if (shownBy) { // from here on erase() undoes everything
        shownBy->_shown.append(entry);
        origin->_shown.append(entry);
    }
    try {
        spread(entry);
    } catch (...) {
        erase(entry);
        throw;
    }
    return entry;
}

/// To where routes lead from it, and into the parent.
void Scope::spread(Entry& entry)
{
    _routes.forEachMatch(entry._label, [&](Route& route, const auto& matched) { aim(route, entry, matched); });
    _externalRoutes.forEachMatch(entry._label,
                                 [&](ExternalRoute& route, const auto& matched) { show(route, entry, matched); });
}

void Scope::erase(Entry& entry) noexcept
{
    while (!entry._shown.empty())
        _parent->erase(entry._shown.front());
    while (!entry._aims.empty())
        drop(entry._aims.front());
    for (const Aim* aim : _aims.under(entry._label))
        part(*aim, entry);
    if (entry._shownBy) {
        entry._shownBy->_shown.remove(entry);
        entry._origin->_shown.remove(entry);
    }
    _entries.erase(entry, entry._label);
}

void Scope::aim(Route& route, Entry& from, const std::vector<std::string_view>& matched)
{
    if (!from._ends.out()) {
        if (route._from.isLiteral()) // a pattern may well match in-slots beside the out-slots that it is meant for
            report(route, wrongWay(route, from._label, "an in-slot", "out-slot"));
        return;
    }
    const auto target = route._to.expand(matched);
    if (!target || target->empty()) {
        report(route, tooLong(route, from._label));
        return;
    }
    Aim& made = _aims.make(*target, route, from);
    try {
        joinAll(made);
    } catch (...) {
        _aims.erase(made, made._target);
        throw;
    }
    route._aims.append(made);
    from._aims.append(made);
}

void Scope::drop(Aim& aim) noexcept
{
    partAll(aim);
    aim._route->_aims.remove(aim);
    aim._from->_aims.remove(aim);
    _aims.erase(aim, aim._target);
}

void Scope::show(ExternalRoute& route, Entry& entry, const std::vector<std::string_view>& matched)
{
    if (!_parent)
        return;
    auto label = route._to.expand(matched, _label, entry._label);
    if (!label || label->empty()) {
        logMessage(LogLevel::Warning, "namespace '" + _label + "', external " + tooLong(route, entry._label));
        return;
    }
    _parent->insert(std::move(*label), entry._ends, &route, &entry);
}

/// Takes all that the route shows out of the parent.
void Scope::hide(ExternalRoute& route) noexcept
{
    while (!route._shown.empty())
        _parent->erase(route._shown.front());
}

std::vector<Scope::Entry*> Scope::matching(const Pattern& pattern)
{
    std::vector<Entry*> entries;
    if (pattern.isLiteral()) {
        for (Entry* entry : _entries.under(pattern.getText()))
            entries.push_back(entry);
        return entries;
    }
    for (const auto& [label, same] : _entries) {
        if (!pattern.match(label))
            continue;
        for (Entry* entry : same)
            entries.push_back(entry);
    }
    std::sort(entries.begin(), entries.end(), BySerial());
    return entries;
}

} // namespace Trovio
