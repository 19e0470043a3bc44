#include "nodes/dds/DdsConfig.h"

#include "nodes/shared/FileDescriptor.h"
#include "nodes/shared/SocketAddress.h"
#include <arpa/inet.h>
#include <cerrno>
#include <cstring>

namespace Trovio::Nodes {

namespace {

constexpr std::uint16_t anyPort = 7400; // asked about, not sent to

/// The numeric address that this machine would send from.
std::string addressTowards(const std::string& host)
{
    const auto target = SocketAddress::parse(host, anyPort);
    const FileDescriptor socket(::socket(AF_INET, SOCK_DGRAM | SOCK_CLOEXEC, 0));
    if (!target || ::connect(socket.get(), target->get(), target->getLength()) != 0)
        throw DdsProblem("no network interface leads to the host " + host + ": " + std::strerror(errno) +
                         "; it is tried again, or choose one with interface=NAME");
    sockaddr_in own{};
    socklen_t length = sizeof(own);
    ::getsockname(socket.get(), reinterpret_cast<sockaddr*>(&own), &length);
    char text[INET_ADDRSTRLEN] = "";
    inet_ntop(AF_INET, &own.sin_addr, text, sizeof(text));
    return text;
}

std::string element(const std::string& name, const std::string& content)
{
    return "<" + name + ">" + content + "</" + name + ">";
}

std::string interfaces(const DdsDomainSettings& settings)
{
    const std::string which = settings._interface.empty() ? "address=\"" + addressTowards(settings._hosts.front())
                                                          : "name=\"" + settings._interface;
    return element("Interfaces", "<NetworkInterface " + which + "\" multicast=\"" +
                                     (settings.isMulticast() ? "default" : "false") + "\"/>");
}

/// Where peers are looked for: programs of this machine too, unless they hear the multicast.
std::string peers(const DdsDomainSettings& settings)
{
    if (settings.isMulticast())
        return {};
    std::string list;
    for (const std::string& host : settings._hosts)
        list += "<Peer address=\"" + host + "\"/>";
    if (settings.isLoopback())
        list += "<Peer address=\"127.0.0.1\"/>";
    return element("Peers", list);
}

} // namespace

std::string makeDdsConfig(const DdsDomainSettings& settings)
{
    const std::string general =
        element("General", interfaces(settings) + element("AllowMulticast", settings.isMulticast() ? "true" : "false") +
                               element("MaxMessageSize", "65500B"));
    const std::string discovery = element(
        "Discovery", element("ParticipantIndex", "auto") +
                         element("MaxAutoParticipantIndex", std::to_string(settings._processes - 1)) + peers(settings) +
                         element("LeaseDuration", std::to_string(static_cast<long>(settings._lease * 1000.0)) + "ms"));
    const std::string internal = element("Internal", element("MaxSampleSize", std::to_string(settings._largest) + "B") +
                                                         "<SocketReceiveBufferSize max=\"4MB\"/>");
    return "<Domain Id=\"any\">" + general + discovery + internal + "</Domain>";
}

} // namespace Trovio::Nodes
