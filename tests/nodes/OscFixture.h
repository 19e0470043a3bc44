#pragma once

#include "nodes/osc/OscNode.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/NodeFixture.h"
#include "tests/nodes/OscMessages.h"
#include "tests/nodes/UdpPeer.h"

namespace Trovio::Nodes {

/// One OSC node on a clock that is moved by hand, and another program on the same machine.
class OscFixture : public ::testing::Test {
protected:
    void run(const std::string& settings, std::unique_ptr<NameLookup> lookup = NameLookup::system())
    {
        _node.emplace(std::make_unique<OscNode>(_clock, std::move(lookup)), settings);
    }

    SocketAddress listening() { return (*_node)->getListenAddresses().at(0); }
    void send(const Packet& packet) { _peer.send(packet, listening()); }
    std::string peerAddress() const { return _peer.getAddress().str(); }

    NodeState state() { return (*_node)->getState(); }
    void awaitCount(const char* counter, std::uint64_t count) { _node->awaitCount(counter, count); }

    OpenRoot _root;
    ManualClock _clock;
    UdpPeer _peer;
    std::optional<StandingNode<OscNode>> _node;
};

} // namespace Trovio::Nodes
