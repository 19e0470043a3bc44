#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Explain {

/// Where a server is to listen, as people write it: "127.0.0.1:8765", "[::1]:8765", "localhost", which is both.
struct ListenAddress {
    static constexpr std::uint16_t DefaultPort = 8765;
    static constexpr const char* Allowed = "an address of this machine in numbers or localhost, and a port that may be "
                                           "left out, such as \"127.0.0.1:8765\", \"[::1]:8765\" or \"localhost\"";

    std::string _host;                 // without brackets
    std::uint16_t _port = DefaultPort; // 0 for any that is free

    /// Nothing for a text that is no such address.
    static std::optional<ListenAddress> read(std::string_view text);
};
} // namespace Explain
