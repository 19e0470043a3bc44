#pragma once

#include "nodes/dds/net/DdsDomainSettings.h"
#include <map>
#include <sys/types.h>

namespace Trovio::Nodes {

/// The sockets of this program at the ports of a domain, by the numbers that the system gives to each socket anew.
std::map<ino_t, int> findSocketsAt(const DdsDomainSettings& domain);

/// Has the sockets that a domain opens take only what comes in through the loopback. The library names an interface to
/// send on, but listens on all of them and has no setting for that. Sockets at the same ports that others have opened
/// before are left alone.
/// Threads: one.
class LoopbackOnly {
public:
    /// Before the domain is opened.
    explicit LoopbackOnly(const DdsDomainSettings& domain) : _domain(domain), _others(findSocketsAt(domain)) {}

    /// Once it is open. Throws DdsProblem where the system refuses.
    void confine() const;

private:
    const DdsDomainSettings& _domain;
    const std::map<ino_t, int> _others;
};

} // namespace Trovio::Nodes
