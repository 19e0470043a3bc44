#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Monitor {

/// What a client of the Foxglove WebSocket protocol may say. Numbers are the client's own but for channels of the
/// server.
namespace Foxglove {
struct Subscribe {
    struct Entry {
        std::uint32_t _number;
        std::uint32_t _channel;
    };
    std::vector<Entry> _entries;
};
struct Unsubscribe {
    std::vector<std::uint32_t> _numbers;
};
struct Advertise {
    struct Entry {
        std::uint32_t _number;
        std::string _topic, _encoding, _schemaName;
    };
    std::vector<Entry> _entries;
};
struct Unadvertise {
    std::vector<std::uint32_t> _numbers;
};
struct Publish {
    std::uint32_t _number;
    std::string_view _payload; // of the message that was read
};
/// What is wrong with it, and what is allowed.
struct Wrong {
    std::string _text;
};
using Message = std::variant<Subscribe, Unsubscribe, Advertise, Unadvertise, Publish, Wrong>;

/// Reads a message from a client, of whatever bytes.
Message read(std::string_view bytes, bool isBinary);
} // namespace Foxglove
} // namespace Monitor
