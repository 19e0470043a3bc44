#include "nodes/dds/net/OwnAddress.h"

#include "nodes/dds/net/DdsEntity.h"
#include "nodes/shared/FileDescriptor.h"
#include "nodes/shared/SocketAddress.h"
#include <cerrno>
#include <cstring>
#include <ifaddrs.h>
#include <memory>
#include <netinet/in.h>

namespace Trovio::Nodes {

namespace {

constexpr std::uint16_t anyPort = 7400; // asked about, not sent to

struct AddressesDelete {
    void operator()(ifaddrs* list) const { ::freeifaddrs(list); }
};

/// In the system's order, each followed by a blank.
std::string addressesOf(const std::string& interface, int family)
{
    ifaddrs* list = nullptr;
    ::getifaddrs(&list);
    const std::unique_ptr<ifaddrs, AddressesDelete> owner(list);
    std::string addresses;
    for (; list; list = list->ifa_next)
        if (list->ifa_addr && list->ifa_addr->sa_family == family && interface == list->ifa_name)
            addresses +=
                SocketAddress(list->ifa_addr, family == AF_INET ? sizeof(sockaddr_in) : sizeof(sockaddr_in6)).host() +
                " ";
    return addresses;
}

} // namespace

std::string addressTowards(const std::string& host)
{
    const auto target = SocketAddress::parse(host, anyPort);
    const FileDescriptor socket(::socket(target ? target->getFamily() : AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!target || ::connect(socket.get(), target->get(), target->getLength()) != 0)
        throw DdsProblem("no network interface leads to the host " + host + ": " + std::strerror(errno) +
                         "; it is tried again, or choose one with interface=NAME");
    return SocketAddress::ofSocket(socket.get()).host();
}

std::string findOwnAddresses(const DdsDomainSettings& settings)
{
    return settings._interface.empty() ? addressTowards(settings._hosts.front())
                                       : addressesOf(settings._interface, settings.isIPv6() ? AF_INET6 : AF_INET);
}

} // namespace Trovio::Nodes
