#include "nodes/dds/net/DdsConfig.h"

#include "nodes/dds/net/OwnAddress.h"

namespace Trovio::Nodes {

namespace {

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
        element("General", interfaces(settings) + element("Transport", settings.isSix() ? "udp6" : "udp") +
                               element("AllowMulticast", settings.isMulticast() ? "true" : "false") +
                               element("MaxMessageSize", "65500B"));
    const std::string discovery = element(
        "Discovery", element("ParticipantIndex", "auto") +
                         element("MaxAutoParticipantIndex", std::to_string(settings._processes - 1)) + peers(settings) +
                         element("LeaseDuration", std::to_string(static_cast<long>(settings._lease * 1000.0)) + "ms"));
    // Threads that receive from one socket each are ended by a packet to the own address, and never end once that is
    // gone.
    const std::string internal =
        element("Internal", element("MaxSampleSize", std::to_string(settings._largest) + "B") +
                                "<SocketReceiveBufferSize max=\"4MB\"/>" +
                                element("MultipleReceiveThreads", settings.isLoopback() ? "true" : "false"));
    return "<Domain Id=\"any\">" + general + discovery + internal + "</Domain>";
}

} // namespace Trovio::Nodes
