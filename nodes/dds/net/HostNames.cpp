#include "nodes/dds/net/HostNames.h"

#include "nodes/dds/net/DdsEntity.h"
#include <algorithm>
#include <utility>

namespace Trovio::Nodes {

std::optional<std::vector<std::string>> HostNames::find()
{
    while (_found.size() < _hosts.size())
        if (!findNext())
            return std::nullopt;
    auto found = std::exchange(_found, {});
    if (const std::string problem = findMixture(found); !problem.empty())
        throw DdsProblem("the hosts have " + problem);
    return found;
}

bool HostNames::findNext()
{
    const std::string& host = _hosts[_found.size()];
    if (SocketAddress::parse(host, 0)) {
        _found.push_back(host);
        return true;
    }
    if (!std::exchange(_isAsking, true))
        _lookup->begin(host, 0);
    const auto answer = _lookup->poll();
    if (!answer)
        return false;
    _isAsking = false;
    if (!answer->_address) {
        _found.clear();
        throw DdsProblem("the host " + host + " is not known: " + answer->_problem + "; it is looked up again");
    }
    _found.push_back(answer->_address->host());
    return true;
}

void HostNames::cancel()
{
    _lookup->cancel();
    _isAsking = false;
    _found.clear();
}

std::string findMixture(const std::vector<std::string>& addresses)
{
    const auto isIPv6 = [](const std::string& address) { return address.find(':') != std::string::npos; };
    const auto isOfLink = [](const std::string& address) { return address.starts_with("fe80:"); };
    if (std::any_of(addresses.begin(), addresses.end(), isOfLink))
        return "an IPv6 address that is valid on one link only (fe80:...)";
    if (std::any_of(addresses.begin(), addresses.end(), isIPv6) &&
        !std::all_of(addresses.begin(), addresses.end(), isIPv6))
        return "both IPv4 and IPv6 addresses, but a domain has one kind";
    return {};
}

} // namespace Trovio::Nodes
