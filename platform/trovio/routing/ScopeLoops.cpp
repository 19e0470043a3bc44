#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/Exception.h"
#include "trovio/routing/Scope.h"

// Routes that would lead records back into a node that they came from.
namespace Trovio {

Chain<Scope, HoldingBack> Scope::_withLooping;
bool Scope::_retryDue = false;

void Scope::leaveTree() noexcept
{
    if (!std::exchange(_looping, {}).empty())
        _withLooping.remove(*this);
}

bool Scope::relays(const Entry& from, const Entry& to)
{
    return from._ends._relay && to._ends._relay;
}

/// Remembers a pair that stays apart, and says why.
void Scope::holdBack(const Aim& aim, const Entry& to, const std::string& reason)
{
    report(*aim._route, reason);
    const bool first = _looping.empty();
    _looping.try_emplace({aim._serial, to._serial}, Looping{&aim, &to, reason});
    if (first)
        _withLooping.append(*this);
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
    std::size_t tried = 0;
    const auto takeBack = [&] {
        while (tried-- > 0)
            pairs[tried]._from->_ends._relay->disconnect(*pairs[tried]._to->_ends._relay, {route._serial, tried});
    };
    try {
        for (; tried < pairs.size(); ++tried) {
            const auto& [from, to] = pairs[tried];
            const auto loop =
                from->_ends._relay->connect(*to->_ends._relay, {route._serial, tried}, {&from->_label, &to->_label});
            if (!loop.empty())
                throw Exception(spellLoop(route, loop));
        }
    } catch (...) {
        takeBack();
        throw;
    }
    takeBack();
}

void Scope::forgetLooping(Relay::Key key) noexcept
{
    _looping.erase(key);
    if (_looping.empty())
        _withLooping.remove(*this);
}

void Scope::retryLooping() noexcept
{
    if (!std::exchange(_retryDue, false))
        return;
    for (auto next = _withLooping.begin(); next != _withLooping.end();) {
        Scope& scope = **next;
        ++next; // first, for it may have no such pair any more
        scope.retryOwnLooping();
    }
}

/// Those for which there is no memory now wait for the next joint that goes.
void Scope::retryOwnLooping() noexcept
{
    for (auto place = _looping.begin(); place != _looping.end();) {
        auto& [aim, to, reason] = place->second;
        try {
            std::string loop = connect(*aim, *to);
            if (loop.empty()) {
                place = _looping.erase(place);
                continue;
            }
            if (loop != reason)
                report(*aim->_route, loop);
            reason.swap(loop);
        } catch (...) {
            _retryDue = true;
        }
        ++place;
    }
    if (_looping.empty())
        _withLooping.remove(*this);
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
