#include "trovio/Scope.h"

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/FrameworkLog.h"

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

void Scope::removeSlot(const std::string& label)
{
    if (Entry* const own = findOwn(label))
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
        aim(route, *entry, *route._from.match(entry->_label));
}

bool Scope::removeRoute(const std::string& from, const std::string& to)
{
    const auto route = _routes.take(from, to);
    if (!route)
        return false;
    while (!route->_aims.empty())
        drop(route->_aims.front());
    retryLooping();
    return true;
}

void Scope::addExternalRoute(const std::string& pattern, const std::string& target)
{
    ExternalRoute& route = _externalRoutes.add(
        std::make_unique<ExternalRoute>(_nextSerial++, pattern, target, LabelTemplate::Placeholders::NamespaceAndSlot));
    for (Entry* entry : matching(route._from))
        show(route, *entry, *route._from.match(entry->_label));
}

bool Scope::removeExternalRoute(const std::string& pattern, const std::string& target)
{
    const auto route = _externalRoutes.take(pattern, target);
    if (!route)
        return false;
    hide(*route);
    retryLooping();
    return true;
}

void Scope::attach(Scope& parent, const std::string& label)
{
    _parent = &parent;
    _label = label;
    for (ExternalRoute* route : _externalRoutes.all()) {
        for (Entry* entry : matching(route->_from))
            show(*route, *entry, *route->_from.match(entry->_label));
    }
}

void Scope::detach()
{
    for (const ExternalRoute* route : _externalRoutes.all())
        hide(*route);
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

Scope::Entry& Scope::insert(std::string freshLabel, const Ends& ends, ExternalRoute* shownBy, Entry* origin)
{
    Entry& entry = _entries.make(std::move(freshLabel), *this, ends, shownBy, origin);
    if (shownBy) { // at once, for erase() counts on it
        ++shownBy->_shown;
        origin->_shown.append(entry);
    }
    const std::string& label = entry._label;
    for (const Aim* aim : _aims.under(label))
        join(*aim, entry);
    _routes.forEachMatch(label, [&](Route& route, const auto& matched) { aim(route, entry, matched); });
    _externalRoutes.forEachMatch(label,
                                 [&](ExternalRoute& route, const auto& matched) { show(route, entry, matched); });
    return entry;
}

void Scope::erase(Entry& entry)
{
    while (!entry._shown.empty())
        _parent->erase(entry._shown.front());
    while (!entry._aims.empty())
        drop(entry._aims.front());
    for (const Aim* aim : _aims.under(entry._label))
        part(*aim, entry);
    if (entry._shownBy) {
        --entry._shownBy->_shown;
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
    route._aims.append(made);
    from._aims.append(made);
    for (const Entry* to : _entries.under(*target))
        join(made, *to);
}

void Scope::drop(Aim& aim)
{
    for (const Entry* to : _entries.under(aim._target))
        part(aim, *to);
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
void Scope::hide(const ExternalRoute& route)
{
    if (route._shown == 0)
        return;
    for (const Entry* entry : matching(route._from)) {
        for (Entry* const shown : entry->_shown) {
            if (shown->_shownBy != &route)
                continue;
            _parent->erase(*shown);
            break; // it shows each slot once
        }
    }
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
