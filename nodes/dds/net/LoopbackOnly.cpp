#include "nodes/dds/net/LoopbackOnly.h"

#include "nodes/dds/net/DdsEntity.h"
#include "nodes/shared/SocketAddress.h"
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>

namespace Trovio::Nodes {

namespace {

// Ports as the protocol lays them out: so many for each domain, from a base; first two that are multicast to, later two
// for each program.
constexpr unsigned portBase = 7400;
constexpr unsigned portsOfDomain = 250;
constexpr unsigned multicastPorts = 2;
constexpr unsigned firstOfPrograms = 10;
constexpr unsigned portsOfProgram = 2;

bool isAtPortOf(const DdsDomainSettings& domain, int descriptor)
{
    // What is below the first port becomes a large number.
    const unsigned port = SocketAddress::ofSocket(descriptor).getPort() - (portBase + portsOfDomain * domain._number);
    return port < multicastPorts || port - firstOfPrograms < portsOfProgram * domain._processes;
}

bool isDatagramSocket(int descriptor)
{
    int type = 0;
    socklen_t length = sizeof(type);
    return ::getsockopt(descriptor, SOL_SOCKET, SO_TYPE, &type, &length) == 0 && type == SOCK_DGRAM;
}

} // namespace

std::map<ino_t, int> findSocketsAt(const DdsDomainSettings& domain)
{
    std::map<ino_t, int> sockets;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
        const std::string name = entry.path().filename();
        int descriptor = -1;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        struct stat status {};
        if (isDatagramSocket(descriptor) && isAtPortOf(domain, descriptor) && ::fstat(descriptor, &status) == 0)
            sockets[status.st_ino] = descriptor;
    }
    return sockets;
}

void LoopbackOnly::confine() const
{
    static constexpr char loopback[] = "lo";
    auto sockets = findSocketsAt(_domain);
    std::erase_if(sockets, [this](const auto& socket) { return _others.contains(socket.first); });
    for (const auto& [number, descriptor] : sockets) {
        if (::setsockopt(descriptor, SOL_SOCKET, SO_BINDTODEVICE, loopback, sizeof(loopback)) != 0)
            throw DdsProblem(std::string("cannot confine the domain to the loopback: ") + std::strerror(errno) +
                             "; this needs Linux 5.7 or later");
    }
    if (sockets.empty())
        throw DdsProblem("cannot confine the domain to the loopback: its sockets were not found");
}

} // namespace Trovio::Nodes
