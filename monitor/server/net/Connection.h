#pragma once

#include "monitor/server/Service.h"
#include "monitor/server/net/Limits.h"

#include <boost/asio/generic/stream_protocol.hpp>
#include <chrono>
#include <functional>

namespace Monitor {

using ClientSocket = boost::asio::generic::stream_protocol::socket;
using SteadyTime = std::chrono::steady_clock::time_point;

/// One client's connection from its first byte to its last. It keeps itself alive while something is under way on it.
/// Threads: the server's.
class Connection {
public:
    /// What a connection needs around it; both outlive it.
    struct Around {
        Service& _service;
        const Limits& _limits;
        std::function<SteadyTime()> _now;
    };

    virtual ~Connection() = default;
    /// Reads the first request, or else says why it reads none.
    virtual void start(const std::optional<std::string>& refusal) = 0;
    /// Ends what takes too long by now.
    virtual void expire(SteadyTime now) = 0;
    /// The server ends: who gets a stream is told so, as far as that goes without waiting.
    virtual void sayFarewell() = 0;
    /// Nothing is under way any more: it ends once nobody holds it.
    virtual void close() = 0;
};

std::shared_ptr<Connection> makeConnection(ClientSocket socket, Door door, const Connection::Around& around);
} // namespace Monitor
