#pragma once

#include "host/listen/OscTraffic.h"
#include "nodes/osc/UdpReceiver.h"
#include "nodes/shared/Worker.h"

#include <atomic>

namespace Host {

/// Receives OSC packets on a thread of its own, so that no slow reader of what is shown makes the system drop any.
/// Threads: one opens and stops; the rest from any.
class OscListener final : Trovio::Nodes::UdpPacketVisitor {
public:
    OscListener();

    /// The problem; empty if it listens now.
    std::string open(const std::vector<Trovio::Nodes::SocketAddress>& places);
    void stop();

    std::string place() const;
    const OscTraffic& traffic() const { return _traffic; }
    std::uint64_t packets() const { return _packets; }
    std::uint64_t malformed() const { return _malformed; }
    std::uint64_t dropped() const { return _dropped; }

private:
    bool receive(Trovio::Nodes::Bytes packet, const Trovio::Nodes::SocketAddress& sender,
                 const Trovio::Time& arrival) override;
    void run();

    OscTraffic _traffic;
    Trovio::Nodes::UdpReceiver _receiver;
    std::atomic<std::uint64_t> _packets{0}, _malformed{0}, _dropped{0}; // by the system, for want of room
    Trovio::Nodes::Worker _worker;
};
} // namespace Host
