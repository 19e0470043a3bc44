#include "nodes/osc/OscListenPlace.h"

#include "trovio/SettingValue.h"
#include <algorithm>

namespace Trovio::Nodes {

std::vector<SocketAddress> readOscListenPlace(const std::string& text)
{
    SettingValue read;
    if (readSettingValue(Setting::endpoint("listen", "", ""), text, {}, read) || !read._endpoint)
        return {};
    const bool isPortOnly = text.find(':') == std::string::npos || text.front() == ':';
    return SocketAddress::forListening(isPortOnly ? "localhost" : read._endpoint->_host, read._endpoint->_port);
}

std::string describeOscPlace(const std::vector<SocketAddress>& addresses)
{
    std::string text;
    for (const SocketAddress& address : addresses)
        text += (text.empty() ? "" : " and ") + address.str();
    return text;
}

std::string describeOscReach(const std::vector<SocketAddress>& addresses)
{
    if (std::all_of(addresses.begin(), addresses.end(), [](const SocketAddress& one) { return one.isLoopback(); }))
        return ", this machine only";
    const bool isAny =
        std::all_of(addresses.begin(), addresses.end(), [](const SocketAddress& one) { return one.isAny(); });
    return isAny ? ", every address of this machine" : "";
}

} // namespace Trovio::Nodes
