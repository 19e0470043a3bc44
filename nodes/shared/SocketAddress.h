#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <sys/socket.h>
#include <vector>

namespace Trovio::Nodes {

/// An address and port of the internet protocols. A plain value.
class SocketAddress {
public:
    SocketAddress() = default;
    SocketAddress(const sockaddr* address, socklen_t length);

    /// From a numeric address, never looked up: "127.0.0.1", "::1", "fe80::1%eth0". Nothing for anything else.
    static std::optional<SocketAddress> parse(const std::string& host, std::uint16_t port);

    /// What to listen on for a host as a setting names it: both loopbacks for "localhost", otherwise the one numeric
    /// address. Empty for a host that is neither.
    static std::vector<SocketAddress> forListening(const std::string& host, std::uint16_t port);

    /// What a socket is bound to.
    static SocketAddress ofSocket(int descriptor);

    std::uint16_t getPort() const;
    void setPort(std::uint16_t port);
    int getFamily() const { return _storage.ss_family; }

    bool isLoopback() const;
    /// 0.0.0.0 or [::], which to listen on means every address of the machine.
    bool isAny() const;

    /// "127.0.0.1", "::1"
    std::string host() const;
    /// "127.0.0.1:9000", "[::1]:9000"
    std::string str() const;

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&_storage); }
    socklen_t getLength() const { return _length; }

private:
    sockaddr_storage _storage{};
    socklen_t _length = 0;
};

} // namespace Trovio::Nodes
