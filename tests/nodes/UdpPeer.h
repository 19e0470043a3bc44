#pragma once

#include "nodes/shared/FileDescriptor.h"
#include "nodes/shared/SocketAddress.h"
#include <cstdint>
#include <span>
#include <stdexcept>
#include <sys/socket.h>
#include <vector>

namespace Trovio::Nodes {

/// A plain UDP socket on the loopback, on a port of its own: the other program.
class UdpPeer {
public:
    explicit UdpPeer(std::uint16_t port = 0) : _socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0))
    {
        const auto address = *SocketAddress::parse("127.0.0.1", port);
        if (::bind(_socket.get(), address.get(), address.getLength()) != 0)
            throw std::runtime_error("no free port");
    }

    SocketAddress getAddress() const { return SocketAddress::ofSocket(_socket.get()); }
    std::uint16_t getPort() const { return getAddress().getPort(); }

    void send(std::span<const std::uint8_t> packet, const SocketAddress& to) const
    {
        if (::sendto(_socket.get(), packet.data(), packet.size(), 0, to.get(), to.getLength()) < 0)
            throw std::runtime_error("packet not sent");
    }

    /// Waits for the next packet. Its sender goes to from, unless that is null.
    std::vector<std::uint8_t> receive(SocketAddress* from = nullptr) const
    {
        std::vector<std::uint8_t> packet(65536);
        sockaddr_storage sender{};
        socklen_t length = sizeof(sender);
        auto* const address = reinterpret_cast<sockaddr*>(&sender);
        const ssize_t size = ::recvfrom(_socket.get(), packet.data(), packet.size(), 0, address, &length);
        packet.resize(static_cast<std::size_t>(size));
        if (from)
            *from = SocketAddress(address, length);
        return packet;
    }

private:
    FileDescriptor _socket;
};

} // namespace Trovio::Nodes
