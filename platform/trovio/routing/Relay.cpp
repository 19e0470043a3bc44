#include "trovio/routing/Relay.h"

#include <algorithm>
#include <deque>
#include <unordered_map>

namespace Trovio {

/// Walks through the graph from one relay, with or against the direction of its joints.
class Relay::Search {
public:
    Search(Relay& start, bool forward) : _forward(forward)
    {
        _waiting.push_back(&start);
        _cameFrom[&start] = nullptr;
    }

    bool isExhausted() const { return _waiting.empty(); }
    bool hasSeen(Relay* relay) const { return _cameFrom.contains(relay); }
    Relay* cameFrom(Relay* relay) const { return _cameFrom.at(relay); }

    /// What the walk will have cost after the next step.
    std::size_t cost() const { return _cost + degree(*_waiting.front()); }

    /// Looks at the neighbours of one relay. The one where both walks meet, or null.
    Relay* step(const Search& other)
    {
        Relay* const here = _waiting.front();
        _waiting.pop_front();
        _cost += degree(*here);
        if (_forward) {
            for (const auto& [next, joints] : here->_next)
                if (visit(here, next, other))
                    return next;
        } else {
            for (Relay* previous : here->_previous)
                if (visit(here, previous, other))
                    return previous;
        }
        return nullptr;
    }

private:
    std::size_t degree(const Relay& relay) const { return _forward ? relay._next.size() : relay._previous.size(); }

    bool visit(Relay* from, Relay* to, const Search& other)
    {
        if (_cameFrom.try_emplace(to, from).second)
            _waiting.push_back(to);
        return other.hasSeen(to);
    }

    const bool _forward;
    std::size_t _cost = 0;
    std::deque<Relay*> _waiting;
    std::unordered_map<Relay*, Relay*> _cameFrom;
};

Relay::~Relay()
{
    for (const auto& [next, joints] : _next)
        next->_previous.erase(this);
    for (Relay* previous : _previous)
        previous->_next.erase(this);
}

std::vector<Relay::Joint> Relay::connect(Relay& to, Key key, const Joint& joint)
{
    if (const auto known = _next.find(&to); known != _next.end()) {
        known->second.emplace(key, joint);
        return {};
    }
    if (std::vector<Joint> back = findPath(to, *this); &to == this || !back.empty()) {
        back.insert(back.begin(), joint);
        return back;
    }
    // The memory for both sides first, so that they never disagree.
    decltype(_next) made;
    made[&to].emplace(key, joint);
    to._previous.insert(this);
    _next.merge(made);
    return {};
}

bool Relay::disconnect(Relay& to, Key key) noexcept
{
    const auto known = _next.find(&to);
    known->second.erase(key);
    if (!known->second.empty())
        return false;
    _next.erase(known);
    to._previous.erase(this);
    return true;
}

/// From both ends in turn, always where it costs less: a long chain that grows at one end, or a hub with many
/// neighbours, is not walked through for each new joint. A joint in the middle costs what the smaller side costs.
std::vector<Relay::Joint> Relay::findPath(Relay& from, Relay& to)
{
    Search forward(from, true), backward(to, false);
    Relay* meeting = nullptr;
    while (!meeting && !forward.isExhausted() && !backward.isExhausted())
        meeting = forward.cost() <= backward.cost() ? forward.step(backward) : backward.step(forward);
    if (!meeting)
        return {};
    std::vector<Joint> path;
    for (Relay* relay = meeting; relay != &from; relay = forward.cameFrom(relay))
        path.push_back(forward.cameFrom(relay)->_next.at(relay).begin()->second);
    std::reverse(path.begin(), path.end());
    for (Relay* relay = meeting; relay != &to; relay = backward.cameFrom(relay))
        path.push_back(relay->_next.at(backward.cameFrom(relay)).begin()->second);
    return path;
}

} // namespace Trovio
