#pragma once

#include "nodes/shared/SocketAddress.h"

// Where messages are received, as people write it and as it is told.
namespace Trovio::Nodes {

/// "9000", which means both loopbacks, "127.0.0.1:9000", "[::]:9000". Empty for anything else.
std::vector<SocketAddress> readOscListenPlace(const std::string& text);

/// "127.0.0.1:9000 and [::1]:9000"
std::string describeOscPlace(const std::vector<SocketAddress>& addresses);

/// From where packets can come, where that is no single address: ", this machine only".
std::string describeOscReach(const std::vector<SocketAddress>& addresses);

} // namespace Trovio::Nodes
