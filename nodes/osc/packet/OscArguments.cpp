#include "nodes/osc/packet/OscArguments.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <endian.h>

namespace Trovio::Nodes {

namespace {

std::size_t padded(std::size_t size)
{
    return (size + 3) & ~std::size_t(3);
}

/// How many bytes an argument has whose size does not depend on its content.
std::optional<std::size_t> fixedSize(char tag)
{
    constexpr std::string_view none = "TFNI";
    constexpr std::string_view four = "ifrcm";
    constexpr std::string_view eight = "hdt";
    if (none.find(tag) != std::string_view::npos)
        return 0;
    if (four.find(tag) != std::string_view::npos)
        return 4;
    if (eight.find(tag) != std::string_view::npos)
        return 8;
    return std::nullopt;
}

} // namespace

std::uint32_t readBigEndian32(const std::uint8_t* bytes)
{
    std::uint32_t number = 0;
    std::memcpy(&number, bytes, sizeof(number));
    return be32toh(number);
}

std::uint64_t readBigEndian64(const std::uint8_t* bytes)
{
    std::uint64_t number = 0;
    std::memcpy(&number, bytes, sizeof(number));
    return be64toh(number);
}

std::optional<std::string_view> takeOscText(Bytes& data)
{
    const auto end = std::find(data.begin(), data.end(), 0);
    const auto length = static_cast<std::size_t>(end - data.begin());
    if (end == data.end() || padded(length + 1) > data.size())
        return std::nullopt;
    const std::string_view text(reinterpret_cast<const char*>(data.data()), length);
    data = data.subspan(padded(length + 1));
    return text;
}

std::int32_t OscArgument::asInt32() const
{
    return static_cast<std::int32_t>(readBigEndian32(_bytes.data()));
}

std::int64_t OscArgument::asInt64() const
{
    return static_cast<std::int64_t>(readBigEndian64(_bytes.data()));
}

float OscArgument::asFloat() const
{
    return std::bit_cast<float>(readBigEndian32(_bytes.data()));
}

double OscArgument::asDouble() const
{
    return std::bit_cast<double>(readBigEndian64(_bytes.data()));
}

std::string_view OscArgument::asText() const
{
    return {reinterpret_cast<const char*>(_bytes.data()), _bytes.size()};
}

OscArguments::OscArguments(std::string_view tags, Bytes data) : _tags(tags), _data(data)
{
    skipBrackets();
}

std::optional<OscArgument> OscArguments::next()
{
    if (atEnd())
        return std::nullopt;
    const char tag = _tags.front();
    const auto bytes = take(tag);
    if (!bytes)
        return std::nullopt;
    _tags.remove_prefix(1);
    skipBrackets();
    return OscArgument{tag, *bytes};
}

std::optional<Bytes> OscArguments::take(char tag)
{
    if (tag == 's' || tag == 'S')
        return takeText();
    if (tag == 'b')
        return takeBlob();
    const auto size = fixedSize(tag);
    if (!size || *size > _data.size())
        return std::nullopt;
    const Bytes taken = _data.first(*size);
    _data = _data.subspan(*size);
    return taken;
}

std::optional<Bytes> OscArguments::takeText()
{
    const auto text = takeOscText(_data);
    if (!text)
        return std::nullopt;
    return Bytes(reinterpret_cast<const std::uint8_t*>(text->data()), text->size());
}

std::optional<Bytes> OscArguments::takeBlob()
{
    if (_data.size() < 4)
        return std::nullopt;
    const std::size_t size = readBigEndian32(_data.data());
    const Bytes content = _data.subspan(4);
    if (size > content.size() || padded(size) > content.size())
        return std::nullopt;
    _data = content.subspan(padded(size));
    return content.first(size);
}

void OscArguments::skipBrackets()
{
    while (!_tags.empty() && (_tags.front() == '[' || _tags.front() == ']'))
        _tags.remove_prefix(1);
}

} // namespace Trovio::Nodes
