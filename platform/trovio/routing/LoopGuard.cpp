#include "trovio/routing/LoopGuard.h"

#include "trovio/Exception.h"
#include "trovio/routing/Connection.h"
#include "trovio/routing/RouteProblems.h"

namespace Trovio {

namespace {

struct RelayPair {
    const SlotView* _from;
    const SlotView* _to;
};

/// The pairs that the route would join, as far as they stand in the graph of nodes.
std::vector<RelayPair> relayPairs(const Route& route, const std::vector<SlotView*>& sources, const SlotViews& targets)
{
    std::vector<RelayPair> pairs;
    for (const SlotView* from : sources) {
        if (!from->_ref._relay || !from->_ref.out())
            continue;
        const auto target = route._to.expand(*route._from.match(from->_label));
        if (!target)
            continue;
        for (const SlotView* to : targets.under(*target)) {
            if (to->_ref._relay && to->_ref.in() && from->_ref._slot->getTypeID() == to->_ref._slot->getTypeID())
                pairs.push_back({from, to});
        }
    }
    return pairs;
}

} // namespace

Chain<LoopGuard, HoldingPairs> LoopGuard::_holding;
bool LoopGuard::_retryDue = false;

void LoopGuard::refuseLoop(const Route& route, const std::vector<SlotView*>& sources, const SlotViews& targets)
{
    const std::vector<RelayPair> pairs = relayPairs(route, sources, targets);
    std::size_t tried = 0;
    const auto takeBack = [&] {
        while (tried-- > 0)
            pairs[tried]._from->_ref._relay->disconnect(*pairs[tried]._to->_ref._relay, {route._serial, tried});
    };
    try {
        for (; tried < pairs.size(); ++tried) {
            const auto& [from, to] = pairs[tried];
            const auto loop =
                from->_ref._relay->connect(*to->_ref._relay, {route._serial, tried}, {&from->_label, &to->_label});
            if (!loop.empty())
                throw Exception(closesLoop(route, loop));
        }
    } catch (...) {
        takeBack();
        throw;
    }
    takeBack();
}

void LoopGuard::hold(const ResolvedRoute& route, const SlotView& to, const std::string& reason)
{
    reportOnce(*route._route, reason);
    const bool first = _held.empty();
    _held.try_emplace(jointOf(route, to), HeldPair{&route, &to, reason});
    if (first)
        _holding.append(*this);
}

bool LoopGuard::release(const ResolvedRoute& route, const SlotView& to) noexcept
{
    if (_held.erase(jointOf(route, to)) == 0)
        return false;
    if (_held.empty())
        _holding.remove(*this);
    return true;
}

std::string LoopGuard::whyHeld(const ResolvedRoute& route, const SlotView& to) const
{
    const auto held = _held.find(jointOf(route, to));
    return held == _held.end() ? std::string() : held->second._reason;
}

void LoopGuard::retryHeld() noexcept
{
    if (!std::exchange(_retryDue, false))
        return;
    for (auto next = _holding.begin(); next != _holding.end();) {
        LoopGuard& guard = **next;
        ++next; // first, for it may hold no pair any more
        guard.retryOwn();
    }
}

void LoopGuard::retryOwn() noexcept
{
    for (auto place = _held.begin(); place != _held.end();) {
        try {
            if (isConnected(place->second)) {
                place = _held.erase(place);
                continue;
            }
        } catch (...) {
            _retryDue = true;
        }
        ++place;
    }
    if (_held.empty())
        _holding.remove(*this);
}

/// Tries to connect the pair; where it still closes a loop, keeps the reason as it is now.
bool LoopGuard::isConnected(HeldPair& pair)
{
    std::string loop = connect(*pair._route, *pair._to);
    if (loop.empty())
        return true;
    if (loop != pair._reason)
        reportOnce(*pair._route->_route, loop);
    pair._reason.swap(loop);
    return false;
}

void LoopGuard::leaveTree() noexcept
{
    if (!std::exchange(_held, {}).empty())
        _holding.remove(*this);
}

} // namespace Trovio
