#include "nodes/dds/LoopbackOnly.h"

#include "nodes/dds/DdsEntity.h"
#include "nodes/shared/SocketAddress.h"
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>

namespace Trovio::Nodes {

namespace {

// Ports as the protocol lays them out: so many for each domain, from a base.
constexpr unsigned portBase = 7400;
constexpr unsigned portsOfDomain = 250;

bool isDatagramSocket(int descriptor)
{
    int type = 0;
    socklen_t length = sizeof(type);
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_DGRAM;
}

} // namespace

std::vector<int> findDdsSockets(unsigned domain)
{
    std::vector<int> sockets;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const std::string name = entry.path().filename();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        if (!isDatagramSocket(descriptor))
            continue;
        const unsigned port = SocketAddress::ofSocket(descriptor).getPort();
        const unsigned first = portBase + portsOfDomain * domain;
        if (port >= first && port < first + portsOfDomain)
            sockets.push_back(descriptor);
    }
    return sockets;
}

void confineToLoopback(unsigned domain)
{
    static constexpr char loopback[] = "lo";
    const auto sockets = findDdsSockets(domain);
    for (const int descriptor : sockets) {
        if (::setsockopt(descriptor, SOL_SOCKET, SO_BINDTODEVICE, loopback, sizeof(loopback)) != 0)
            throw DdsProblem(std::string("cannot confine the domain to the loopback: ") + std::strerror(errno) +
                             "; this needs Linux 5.7 or later");
    }
    if (sockets.empty())
        throw DdsProblem("cannot confine the domain to the loopback: its sockets were not found");
}

} // namespace Trovio::Nodes
