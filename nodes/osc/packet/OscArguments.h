#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

namespace Trovio::Nodes {

using Bytes = std::span<const std::uint8_t>;

/// One argument of a message; its bytes stay in the packet.
struct OscArgument {
    char _tag = 0;
    Bytes _bytes{}; // as sent; a text without its zero bytes, a blob without its length

    std::int32_t asInt32() const;
    std::int64_t asInt64() const;
    float asFloat() const;
    double asDouble() const;
    std::string_view asText() const;
};

/// Walks through the arguments of a message. Array brackets only group, and are passed over.
/// Threads: a plain value, for as long as the packet stays.
class OscArguments {
public:
    OscArguments(std::string_view tags, Bytes data);

    bool atEnd() const { return _tags.empty(); }
    /// The tag of the next argument; 0 at the end.
    char peek() const { return atEnd() ? '\0' : _tags.front(); }

    /// Nothing at the end, for a tag that is not known, and where the bytes end before the argument does.
    std::optional<OscArgument> next();

    /// Bytes that no argument has claimed yet.
    std::size_t getRest() const { return _data.size(); }

private:
    std::optional<Bytes> take(char tag);
    std::optional<Bytes> takeText();
    std::optional<Bytes> takeBlob();
    void skipBrackets();

    std::string_view _tags;
    Bytes _data;
};

/// The text at the front of data, which ends with a zero byte and is filled up to a multiple of four; data then begins
/// behind it. Nothing, and no change, if there is no such text.
std::optional<std::string_view> takeOscText(Bytes& data);

std::uint32_t readBigEndian32(const std::uint8_t* bytes);
std::uint64_t readBigEndian64(const std::uint8_t* bytes);

} // namespace Trovio::Nodes
