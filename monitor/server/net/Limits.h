#pragma once

#include <chrono>
#include <cstddef>

namespace Monitor {

/// What one client may take of the server.
struct Limits {
    std::size_t _clients = 32;         // at the Unix socket, and as many on TCP
    std::size_t _head = 32 * 1024;     // bytes of a request before its body
    std::size_t _fields = 64;          // of a head
    std::size_t _body = 1 << 20;       // bytes; a message of a WebSocket, too
    std::chrono::seconds _idle{60};    // between requests
    std::chrono::seconds _request{10}; // for the head, and for the body, from the first byte on
    std::chrono::seconds _stuck{600};  // a message that the client does not take
    std::chrono::seconds _leaving{2};  // for a client that was told to go
};
} // namespace Monitor
