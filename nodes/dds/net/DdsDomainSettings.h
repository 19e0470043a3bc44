#pragma once

#include <string>
#include <vector>

namespace Trovio::Nodes {

/// What belongs to a domain, and so is the same for all nodes of this program that take part in it.
struct DdsDomainSettings {
    unsigned _number = 0;
    std::string _interface;          // empty: the one that leads to the first host
    std::vector<std::string> _hosts; // numeric, of one family; with any of them nothing is multicast
    double _lease = 3.0;             // seconds of silence after which a peer counts as gone
    unsigned _processes = 1;         // programs that are looked for on a host, where nothing is multicast
    unsigned _largest = 1;           // bytes of a sample; larger ones are neither sent nor taken

    bool isLoopback() const { return _interface == "lo"; }
    bool isMulticast() const { return !isLoopback() && _hosts.empty(); }
    bool isIPv6() const { return !_hosts.empty() && _hosts.front().find(':') != std::string::npos; } // of IPv6
    bool operator==(const DdsDomainSettings&) const = default;

    /// "domain 0 on interface lo, this machine only". Where no interface is named: by the own address, or, while that
    /// is not known, by the host that the domain leads to.
    std::string describe(const std::string& ownAddress = "") const;

    /// The configuration as the library reads it: made from the settings alone, whatever the environment says.
    /// Interface and hosts must be plain: names of interfaces, numeric addresses. Throws DdsProblem where no interface
    /// leads to the first host.
    std::string makeConfig() const;
};

} // namespace Trovio::Nodes
