#include "nodes/dds/clocks/PeerClocks.h"

#include <algorithm>
#include <tuple>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxPeers = 1024;
constexpr std::uint64_t hurriedQuestions = 8;
constexpr double hurriedPeriod = 0.1; // seconds
constexpr double calmPeriod = 2.0;    // seconds

} // namespace

bool PeerClocks::want(std::uint64_t peer)
{
    if (const auto found = _peers.find(peer); found != _peers.end()) {
        found->second._wanted = true;
        return false;
    }
    if (_peers.size() == maxPeers)
        forgetOne();
    _peers.emplace(peer, Peer{._lastSign = ++_turn});
    return true;
}

std::optional<double> PeerClocks::nextAsking() const
{
    std::optional<double> next;
    for (const auto& [id, peer] : _peers)
        if (peer.isToBeAsked())
            next = std::min(next.value_or(peer._nextAsking), peer._nextAsking);
    return next;
}

std::optional<std::uint64_t> PeerClocks::ask(double now, double date)
{
    // Nobody is left out, however many are due: who has waited longest comes first.
    auto due = _peers.end();
    for (auto peer = _peers.begin(); peer != _peers.end(); ++peer)
        if (peer->second.isToBeAsked() && peer->second._nextAsking <= now &&
            (due == _peers.end() || peer->second._nextAsking < due->second._nextAsking))
            due = peer;
    if (due == _peers.end())
        return std::nullopt;
    Peer& peer = due->second;
    peer._questions[peer._asked % peer._questions.size()] = date;
    ++peer._asked;
    ++peer._unanswered;
    peer._nextAsking = now + (peer._asked < hurriedQuestions ? hurriedPeriod : calmPeriod);
    peer._wanted = false;
    return due->first;
}

bool PeerClocks::note(const Answer& answer)
{
    const auto found = _peers.find(answer._peer);
    if (found == _peers.end())
        return false;
    Peer& peer = found->second;
    const auto question = std::find(peer._questions.begin(), peer._questions.end(), answer._asked);
    if ((peer._sender != 0 && peer._sender != answer._sender) || question == peer._questions.end() ||
        !peer._offset.note(answer._asked, answer._received, answer._answered, answer._arrived))
        return false;
    *question = Peer::none;
    peer._unanswered = 0;
    peer._sender = answer._sender;
    peer._answered = true;
    peer._lastSign = ++_turn;
    return true;
}

void PeerClocks::forgetSender(std::uint64_t sender)
{
    for (auto& [id, peer] : _peers)
        if (peer._sender == sender)
            peer._sender = 0;
}

void PeerClocks::forgetSenders()
{
    for (auto& [id, peer] : _peers)
        peer._sender = 0;
}

PeerClocks::Knowledge PeerClocks::getKnowledge(std::uint64_t peer, double date) const
{
    const auto found = _peers.find(peer);
    if (found == _peers.end())
        return {};
    const ClockOffset& offset = found->second._offset;
    return {offset.estimate(date), offset.age(date), found->second._unanswered};
}

bool PeerClocks::Peer::isToBeAsked() const
{
    return _wanted || _asked < hurriedQuestions;
}

void PeerClocks::forgetOne()
{
    _peers.erase(std::min_element(_peers.begin(), _peers.end(), [](const auto& a, const auto& b) {
        return std::tie(a.second._answered, a.second._lastSign) < std::tie(b.second._answered, b.second._lastSign);
    }));
}

} // namespace Trovio::Nodes
