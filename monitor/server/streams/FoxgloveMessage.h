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
template <class Item>
struct List {
    using Entry = Item;
    std::vector<Entry> _entries;
    std::vector<std::string> _faults; // what is wrong with others, and what is allowed
};
struct Subscription {
    std::uint32_t _number;
    std::uint32_t _channel;
};
struct Subscribe : List<Subscription> {};
struct Unsubscribe : List<std::uint32_t> {};
struct Publication {
    std::uint32_t _number;
    std::string _topic, _encoding, _schemaName;
};
struct Advertise : List<Publication> {};
struct Unadvertise : List<std::uint32_t> {};
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
