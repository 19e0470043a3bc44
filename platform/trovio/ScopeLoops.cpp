#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/Scope.h"

// Routes that would lead records back into a node that they came from.
namespace Trovio {

std::set<Scope*> Scope::_withLooping;
bool Scope::_retryDue = false;

void Scope::leaveTree()
{
    if (!std::exchange(_looping, {}).empty())
        _withLooping.erase(this);
}

bool Scope::relays(const Entry& from, const Entry& to) const
{
    return from._ends._relay && to._ends._relay;
}

/// Joins the two nodes in the graph, or remembers the pair and says why it stays apart.
bool Scope::closesLoop(const Aim& aim, const Entry& to)
{
    if (!relays(*aim._from, to))
        return false;
    const Relay::Key key{aim._serial, to._serial};
    const auto loop = aim._from->_ends._relay->connect(*to._ends._relay, key, {&aim._from->_label, &to._label});
    if (loop.empty())
        return false;
    const std::string reason = spellLoop(*aim._route, loop);
    _looping.insert_or_assign(key, Looping{&aim, &to, reason});
    _withLooping.insert(this);
    report(*aim._route, reason);
    return true;
}

/// Which relays the route would join, if they are of one type and their slots of the right direction.
std::vector<Scope::RelayPair> Scope::relayPairs(const Route& route, const std::vector<Entry*>& starts) const
{
    std::vector<RelayPair> pairs;
    for (const Entry* from : starts) {
        if (!from->_ends._relay || !from->_ends.out())
            continue;
        const auto target = route._to.expand(*route._from.match(from->_label));
        if (!target)
            continue;
        for (const Entry* to : _entries.under(*target)) {
            if (relays(*from, *to) && to->_ends.in() && from->_ends._slot->getTypeID() == to->_ends._slot->getTypeID())
                pairs.push_back({from, to});
        }
    }
    return pairs;
}

/// Tries the route in the graph only, so that a refused one has moved no record.
void Scope::refuseLoop(const Route& route, const std::vector<Entry*>& starts) const
{
    if (!_connecting)
        return;
    const std::vector<RelayPair> pairs = relayPairs(route, starts);
    std::vector<Relay::Joint> loop;
    std::size_t tried = 0;
    for (; tried < pairs.size() && loop.empty(); ++tried) {
        const auto& [from, to] = pairs[tried];
        loop = from->_ends._relay->connect(*to->_ends._relay, {route._serial, tried}, {&from->_label, &to->_label});
    }
    if (!loop.empty())
        --tried; // the last one was not noted
    while (tried-- > 0)
        pairs[tried]._from->_ends._relay->disconnect(*pairs[tried]._to->_ends._relay, {route._serial, tried});
    if (!loop.empty())
        throw Exception(spellLoop(route, loop));
}

void Scope::forgetLooping(Relay::Key key)
{
    _looping.erase(key);
    if (_looping.empty())
        _withLooping.erase(this);
}

void Scope::retryLooping()
{
    if (!_retryDue)
        return;
    _retryDue = false;
    for (Scope* scope : std::exchange(_withLooping, {})) {
        for (const auto& [key, looping] : std::exchange(scope->_looping, {}))
            scope->join(*looping._aim, *looping._to);
    }
}

std::string Scope::spellLoop(const RouteRule& route, const std::vector<Relay::Joint>& loop)
{
    constexpr std::size_t longest = 20;
    std::string text = route.quoted() + " would close a loop of nodes: ";
    for (std::size_t i = 0; i < std::min(loop.size(), longest); ++i)
        text += (i ? ", '" : "'") + *loop[i]._from + "' -> '" + *loop[i]._to + "'";
    if (loop.size() > longest)
        text += ", and " + std::to_string(loop.size() - longest) + " more";
    return text + "; take one of these routes away";
}

} // namespace Trovio
