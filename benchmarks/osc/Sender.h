#pragma once

#include <arpa/inet.h>
#include <array>
#include <bit>
#include <cstring>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

namespace Bench {

/// The program on the other side: sends the message /wand/position with three floats, the first of which is its number.
class Sender {
public:
    static constexpr std::size_t atOnce = 16;

    explicit Sender(std::uint16_t port) : _socket(::socket(AF_INET, SOCK_DGRAM, 0))
    {
        sockaddr_in to{};
        to.sin_family = AF_INET;
        to.sin_port = htons(port);
        to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        if (_socket < 0 || ::connect(_socket, reinterpret_cast<const sockaddr*>(&to), sizeof to) != 0)
            throw std::runtime_error("cannot open a socket to the loopback");
    }
    Sender(const Sender&) = delete;
    Sender& operator=(const Sender&) = delete;
    ~Sender() { ::close(_socket); }

    void send(float number)
    {
        write(_packets[0], number);
        if (::send(_socket, _packets[0].data(), packetBytes, 0) != packetBytes)
            throw std::runtime_error("cannot send to the loopback");
    }

    /// Several with one system call.
    void sendSome()
    {
        std::array<iovec, atOnce> parts;
        std::array<mmsghdr, atOnce> headers{};
        for (std::size_t i = 0; i < atOnce; ++i) {
            write(_packets[i], static_cast<float>(i));
            parts[i] = {_packets[i].data(), packetBytes};
            headers[i].msg_hdr.msg_iov = &parts[i];
            headers[i].msg_hdr.msg_iovlen = 1;
        }
        if (::sendmmsg(_socket, headers.data(), atOnce, 0) != static_cast<int>(atOnce))
            throw std::runtime_error("cannot send to the loopback");
    }

    static constexpr std::size_t packetBytes = 36;
    static constexpr std::size_t headBytes = 24; // address and types
    using Packet = std::array<char, packetBytes>;
    static Packet packet()
    {
        Packet made{};
        std::memcpy(made.data(), "/wand/position\0\0,fff", headBytes - 4);
        return made;
    }

private:
    static void write(Packet& packet, float number)
    {
        const std::uint32_t wire = htonl(std::bit_cast<std::uint32_t>(number));
        std::memcpy(packet.data() + headBytes, &wire, sizeof wire);
    }

    const int _socket;
    std::array<Packet, atOnce> _packets = [] {
        std::array<Packet, atOnce> all;
        all.fill(packet());
        return all;
    }();
};

} // namespace Bench
