#include "nodes/dds/net/DdsDomainSettings.h"

namespace Trovio::Nodes {

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

} // namespace Trovio::Nodes
