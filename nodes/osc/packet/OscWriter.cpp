#include "nodes/osc/packet/OscWriter.h"

#include <bit>

namespace Trovio::Nodes {

namespace {

void pad(std::vector<std::uint8_t>& bytes)
{
    bytes.resize((bytes.size() + 3) & ~std::size_t(3));
}

/// With at least one zero byte behind it.
void appendText(std::vector<std::uint8_t>& bytes, std::string_view text)
{
    bytes.insert(bytes.end(), text.begin(), text.end());
    bytes.push_back(0);
    pad(bytes);
}

} // namespace

void appendBigEndian32(std::vector<std::uint8_t>& bytes, std::uint32_t number)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
}

void appendBigEndian64(std::vector<std::uint8_t>& bytes, std::uint64_t number)
{
    appendBigEndian32(bytes, static_cast<std::uint32_t>(number >> 32U));
    appendBigEndian32(bytes, static_cast<std::uint32_t>(number));
}

void OscWriter::begin(std::string_view address)
{
    _address.assign(address);
    _tags.assign(",");
    _arguments.clear();
}

void OscWriter::addNumber(float number)
{
    addBits32('f', std::bit_cast<std::uint32_t>(number));
}

void OscWriter::addNumber(double number)
{
    addBits64('d', std::bit_cast<std::uint64_t>(number));
}

void OscWriter::addText(std::string_view text)
{
    _tags += 's';
    appendText(_arguments, text.substr(0, text.find('\0')));
}

void OscWriter::addBlob(Bytes bytes)
{
    addBits32('b', static_cast<std::uint32_t>(bytes.size()));
    _arguments.insert(_arguments.end(), bytes.begin(), bytes.end());
    pad(_arguments);
}

Bytes OscWriter::finish()
{
    _message.clear();
    appendText(_message, _address);
    appendText(_message, _tags);
    _message.insert(_message.end(), _arguments.begin(), _arguments.end());
    return _message;
}

void OscWriter::addBits32(char tag, std::uint32_t bits)
{
    _tags += tag;
    appendBigEndian32(_arguments, bits);
}

void OscWriter::addBits64(char tag, std::uint64_t bits)
{
    _tags += tag;
    appendBigEndian64(_arguments, bits);
}

} // namespace Trovio::Nodes
