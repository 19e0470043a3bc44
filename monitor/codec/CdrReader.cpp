#include "monitor/codec/CdrReader.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace Monitor {

namespace {

std::string headText(std::span<const std::byte> message)
{
    std::string text;
    for (const std::byte byte : message.first(std::min(message.size(), sizeof(cdrHead)))) {
        std::array<char, 4> digits{};
        std::snprintf(digits.data(), digits.size(), " %02x", std::to_integer<unsigned>(byte));
        text += digits.data();
    }
    return text.empty() ? " nothing" : text;
}

} // namespace

CdrReader::CdrReader(std::span<const std::byte> message)
{
    // The last two bytes are options, which plain CDR does not need.
    if (message.size() < sizeof(cdrHead) || message[0] != cdrHead[0] || message[1] != cdrHead[1])
        fail("the message begins with" + headText(message) + "; it must be plain little-endian CDR, 00 01 00 00");
    else
        _body = message.subspan(sizeof(cdrHead));
}

void CdrReader::fail(std::string problem)
{
    if (!hasFailed())
        _problem = std::move(problem);
}

const std::byte* CdrReader::take(std::size_t size, std::size_t count)
{
    if (hasFailed())
        return nullptr;
    const std::size_t begin = (_position + size - 1) / size * size;
    const std::size_t left = _body.size() - std::min(begin, _body.size());
    if (count > left / size) {
        fail("the message ends too early: at byte " + std::to_string(begin) + " behind its head " +
             std::to_string(left) + " bytes are left for " + std::to_string(count) + " numbers of " +
             std::to_string(size) + " bytes");
        return nullptr;
    }
    _position = begin + count * size;
    return _body.data() + begin;
}

std::size_t CdrReader::getCount(std::size_t least)
{
    const std::size_t count = get<std::uint32_t>();
    const std::size_t left = _body.size() - _position;
    if (count <= left / least)
        return count;
    fail("at byte " + std::to_string(_position - sizeof(std::uint32_t)) + " behind its head the message announces " +
         std::to_string(count) + " elements of at least " + std::to_string(least) + " bytes, but " +
         std::to_string(left) + " bytes are left");
    return 0;
}

std::string_view CdrReader::getText()
{
    // An empty text may also come without its end.
    const auto bytes = getBytes();
    if (bytes.empty())
        return {};
    if (bytes.back() != std::byte(0)) {
        fail("the text that ends at byte " + std::to_string(_position) +
             " behind the head has no zero byte at its end");
        return {};
    }
    return {reinterpret_cast<const char*>(bytes.data()), bytes.size() - 1};
}

std::span<const std::byte> CdrReader::getBytes()
{
    const std::size_t count = getCount(1);
    const std::byte* const bytes = take(1, count);
    return {bytes, bytes ? count : 0};
}

} // namespace Monitor
