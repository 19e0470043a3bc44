#pragma once

#include "explain/text/ListenAddress.h"
#include "monitor/server/net/Descriptor.h"
#include "monitor/server/net/RequestHead.h"

#include <string>
#include <vector>

namespace Monitor {

/// A TCP socket that listens.
struct TcpDoor {
    Descriptor _socket;
    Door _door;
    std::string _address; // "127.0.0.1:8765"
};

/// Opens the address, for localhost those of IPv4 and IPv6 with one port; where that is taken, with the next one that
/// is free. Throws std::runtime_error that says what is wrong and what helps.
std::vector<TcpDoor> openTcpDoors(const Explain::ListenAddress& address);
} // namespace Monitor
