#include "nodes/shared/SocketAddress.h"

#include <algorithm>
#include <cstring>
#include <netdb.h>
#include <netinet/in.h>

namespace Trovio::Nodes {

SocketAddress::SocketAddress(const sockaddr* address, socklen_t length)
    : _length(std::min<socklen_t>(length, sizeof(_storage)))
{
    std::memcpy(&_storage, address, _length);
}

std::optional<SocketAddress> SocketAddress::parse(const std::string& host, std::uint16_t port)
{
    addrinfo wanted{};
    wanted.ai_flags = AI_NUMERICHOST;
    wanted.ai_socktype = SOCK_DGRAM;
    addrinfo* found = nullptr;
    if (host.empty() || ::getaddrinfo(host.c_str(), nullptr, &wanted, &found) != 0)
        return std::nullopt;
    SocketAddress address(found->ai_addr, found->ai_addrlen);
    ::freeaddrinfo(found);
    address.setPort(port);
    return address;
}

std::vector<SocketAddress> SocketAddress::forListening(const std::string& host, std::uint16_t port)
{
    if (host == "localhost")
        return {*parse("127.0.0.1", port), *parse("::1", port)};
    const auto address = parse(host, port);
    return address ? std::vector{*address} : std::vector<SocketAddress>();
}

SocketAddress SocketAddress::ofSocket(int descriptor)
{
    SocketAddress address;
    address._length = sizeof(address._storage);
    if (::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address._storage), &address._length) != 0)
        return {};
    return address;
}

// The port stands at the same place in both families, but each has a type of its own.
std::uint16_t SocketAddress::getPort() const
{
    if (getFamily() == AF_INET6)
        return ntohs(reinterpret_cast<const sockaddr_in6*>(&_storage)->sin6_port);
    return ntohs(reinterpret_cast<const sockaddr_in*>(&_storage)->sin_port);
}

void SocketAddress::setPort(std::uint16_t port)
{
    if (getFamily() == AF_INET6)
        reinterpret_cast<sockaddr_in6*>(&_storage)->sin6_port = htons(port);
    else
        reinterpret_cast<sockaddr_in*>(&_storage)->sin_port = htons(port);
}

bool SocketAddress::isLoopback() const
{
    if (getFamily() == AF_INET6)
        return IN6_IS_ADDR_LOOPBACK(&reinterpret_cast<const sockaddr_in6*>(&_storage)->sin6_addr);
    return ntohl(reinterpret_cast<const sockaddr_in*>(&_storage)->sin_addr.s_addr) >> 24 == IN_LOOPBACKNET;
}

bool SocketAddress::isAny() const
{
    if (getFamily() == AF_INET6)
        return IN6_IS_ADDR_UNSPECIFIED(&reinterpret_cast<const sockaddr_in6*>(&_storage)->sin6_addr);
    return reinterpret_cast<const sockaddr_in*>(&_storage)->sin_addr.s_addr == htonl(INADDR_ANY);
}

std::string SocketAddress::host() const
{
    char text[NI_MAXHOST] = "";
    return ::getnameinfo(get(), _length, text, sizeof(text), nullptr, 0, NI_NUMERICHOST) == 0 ? text : "";
}

std::string SocketAddress::str() const
{
    const std::string text = host();
    if (text.empty())
        return "an unknown address";
    const std::string port = ":" + std::to_string(getPort());
    return getFamily() == AF_INET6 ? "[" + text + "]" + port : text + port;
}

} // namespace Trovio::Nodes
