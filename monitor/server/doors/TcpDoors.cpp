#include "monitor/server/doors/TcpDoors.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>

namespace Monitor {
namespace {

constexpr int waiting = 64; // clients that have not been taken in yet
constexpr int portsTried = 100;

struct Address {
    sockaddr_storage _storage{};
    socklen_t _length = 0;
    Door _door = Door::Network;
};

Address addressOf(const std::string& host, std::uint16_t port)
{
    Address address;
    auto& four = reinterpret_cast<sockaddr_in&>(address._storage);
    auto& six = reinterpret_cast<sockaddr_in6&>(address._storage);
    if (inet_pton(AF_INET, host.c_str(), &four.sin_addr) == 1) {
        four.sin_family = AF_INET;
        four.sin_port = htons(port);
        address._length = sizeof four;
        address._door = (ntohl(four.sin_addr.s_addr) >> 24) == 127 ? Door::Loopback : Door::Network;
    } else if (inet_pton(AF_INET6, host.c_str(), &six.sin6_addr) == 1) {
        six.sin6_family = AF_INET6;
        six.sin6_port = htons(port);
        address._length = sizeof six;
        address._door = IN6_IS_ADDR_LOOPBACK(&six.sin6_addr) ? Door::Loopback : Door::Network;
    }
    return address;
}

std::uint16_t portOf(int socket)
{
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    getsockname(socket, reinterpret_cast<sockaddr*>(&storage), &length);
    return ntohs(reinterpret_cast<const sockaddr_in&>(storage).sin_port); // where IPv6 has it, too
}

std::string textOf(const std::string& host, std::uint16_t port)
{
    return (host.find(':') == host.npos ? host : "[" + host + "]") + ":" + std::to_string(port);
}

// Without a socket where it fails; errno says why.
TcpDoor openOne(const std::string& host, std::uint16_t port)
{
    const Address address = addressOf(host, port);
    TcpDoor door{Descriptor(socket(address._storage.ss_family, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)),
                 address._door,
                 {}};
    if (door._socket.get() < 0)
        return door;
    const int on = 1;
    setsockopt(door._socket.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    if (address._storage.ss_family == AF_INET6)
        setsockopt(door._socket.get(), IPPROTO_IPV6, IPV6_V6ONLY, &on, sizeof on);
    if (bind(door._socket.get(), reinterpret_cast<const sockaddr*>(&address._storage), address._length) != 0 ||
        listen(door._socket.get(), waiting) != 0) {
        const int error = errno;
        door._socket = Descriptor();
        errno = error;
        return door;
    }
    door._address = textOf(host, portOf(door._socket.get()));
    return door;
}

// All of them with one port; none where one of them fails, but for a kind of address that the machine has not.
std::vector<TcpDoor> openAll(const std::vector<std::string>& hosts, std::uint16_t port)
{
    std::vector<TcpDoor> doors;
    for (const std::string& host : hosts) {
        const std::uint16_t shared = doors.empty() ? port : portOf(doors.front()._socket.get());
        TcpDoor door = openOne(host, shared);
        if (door._socket.get() >= 0)
            doors.push_back(std::move(door));
        else if (hosts.size() == 1 || (errno != EADDRNOTAVAIL && errno != EAFNOSUPPORT))
            return {};
    }
    return doors;
}
} // namespace

std::vector<TcpDoor> openTcpDoors(const Explain::ListenAddress& address)
{
    using Hosts = std::vector<std::string>;
    const Hosts hosts = address._host == "localhost" ? Hosts{"127.0.0.1", "::1"} : Hosts{address._host};
    for (int i = 0; i < portsTried && (address._port == 0 || address._port + i <= 65535); ++i) {
        const auto port = static_cast<std::uint16_t>(address._port == 0 ? 0 : address._port + i);
        if (auto doors = openAll(hosts, port); !doors.empty())
            return doors;
        if (errno != EADDRINUSE)
            throw std::runtime_error("cannot listen at " + textOf(address._host, port) + ": " + std::strerror(errno) +
                                     "; allowed: an address that this machine has, and a port from 1024");
    }
    throw std::runtime_error("cannot listen at " + textOf(address._host, address._port) + ": that port and the " +
                             std::to_string(portsTried - 1) + " behind it are taken; give another one");
}
} // namespace Monitor
