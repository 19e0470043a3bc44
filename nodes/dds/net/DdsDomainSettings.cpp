#include "nodes/dds/net/DdsDomainSettings.h"

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

std::string DdsDomainSettings::describe(const std::string& ownAddress) const
{
    std::string text = "domain " + std::to_string(_number);
    if (!_interface.empty())
        text += " on interface " + _interface;
    else
        text += ownAddress.empty() ? " towards " + _hosts.front() : " at address " + ownAddress;
    if (isLoopback())
        return text + ", this machine only";
    return text + (isMulticast() ? ", peers found by multicast" : ", without multicast");
}

std::string DdsDomainSettings::makeConfig() const
{
    const std::string general = element("General", interfaces(*this) + element("Transport", isIPv6() ? "udp6" : "udp") +
                                                       element("AllowMulticast", isMulticast() ? "true" : "false") +
                                                       element("MaxMessageSize", "65500B"));
    const std::string discovery =
        element("Discovery", element("ParticipantIndex", "auto") +
                                 element("MaxAutoParticipantIndex", std::to_string(_processes - 1)) + peers(*this) +
                                 element("LeaseDuration", std::to_string(static_cast<long>(_lease * 1000.0)) + "ms"));
    // Threads that receive from one socket each are ended by a packet to the own address, and never end once that is
    // gone.
    const std::string internal =
        element("Internal", element("MaxSampleSize", std::to_string(_largest) + "B") +
                                "<SocketReceiveBufferSize max=\"4MB\"/>" +
                                element("MultipleReceiveThreads", isLoopback() ? "true" : "false"));
    return "<Domain Id=\"any\">" + general + discovery + internal + "</Domain>";
}

} // namespace Trovio::Nodes
