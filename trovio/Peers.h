#pragma once

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace Trovio {

/// The slots that a slot is connected to, in order of first connection, each with how often. A count is at least 1.
template <class PeerSlot>
using Peers = std::vector<std::pair<PeerSlot*, unsigned long>>;

template <class PeerSlot>
auto findPeer(Peers<PeerSlot>& peers, const PeerSlot& peer)
{
    return std::find_if(peers.begin(), peers.end(), [&peer](const auto& pair) { return pair.first == &peer; });
}

/// Makes room for one more.
template <class PeerSlot>
void reservePeer(Peers<PeerSlot>& peers)
{
    if (peers.size() == peers.capacity())
        peers.reserve(std::max<std::size_t>(1, 2 * peers.size()));
}

/// True if the peer is new in the list.
template <class PeerSlot>
bool addPeer(Peers<PeerSlot>& peers, PeerSlot& peer)
{
    const auto found = findPeer(peers, peer);
    if (found == peers.end()) {
        peers.emplace_back(&peer, 1);
        return true;
    }
    ++found->second;
    return false;
}

/// Takes one connection back. A peer that is not in the list is no error.
template <class PeerSlot>
void removePeer(Peers<PeerSlot>& peers, const PeerSlot& peer)
{
    const auto found = findPeer(peers, peer);
    if (found != peers.end() && --found->second == 0)
        peers.erase(found);
}

} // namespace Trovio
