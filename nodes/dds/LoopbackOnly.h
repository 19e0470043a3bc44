#pragma once

#include <vector>

namespace Trovio::Nodes {

/// The sockets of this program that listen for a domain on all interfaces, found by the ports that the domain has.
std::vector<int> findDdsSockets(unsigned domain);

/// Has those sockets take only what comes in through the loopback. The library names an interface to send on, but
/// listens on all of them and has no setting for that. Throws DdsProblem where the system refuses.
void confineToLoopback(unsigned domain);

} // namespace Trovio::Nodes
