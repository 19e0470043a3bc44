#include "nodes/osc/packet/OscPacker.h"

#include "nodes/osc/packet/OscWriter.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t preferredSize = 1400; // fits into one frame of every usual network
constexpr std::size_t overhead = 24;        // of a message in a bundle of its own: length, mark, tag, length
constexpr char bundleMark[] = "#bundle";    // its zero byte belongs to it

void appendHeader(std::vector<std::uint8_t>& packet, OscTimeTag tag)
{
    for (const char mark : bundleMark)
        packet.push_back(static_cast<std::uint8_t>(mark));
    appendBigEndian64(packet, tag);
}

} // namespace

void OscPacker::add(Bytes message, const Time& stamp)
{
    const std::size_t size = overhead + _bytes.size() + _messages.size() * overhead + message.size();
    if (!_messages.empty() && (_bundling == Bundling::Never || size > preferredSize))
        flush();
    _messages.push_back({toTimeTag(stamp), _bytes.size(), message.size()});
    _bytes.insert(_bytes.end(), message.begin(), message.end());
}

void OscPacker::flush()
{
    if (_messages.empty())
        return;
    if (_messages.size() == 1 && _bundling != Bundling::Always) {
        _send(_bytes, 1);
    } else {
        writeBundle();
        _send(_packet, _messages.size());
    }
    _messages.clear();
    _bytes.clear();
}

void OscPacker::writeBundle()
{
    const auto earliest = std::min_element(_messages.begin(), _messages.end(),
                                           [](const auto& left, const auto& right) { return left._tag < right._tag; });
    _packet.clear();
    appendHeader(_packet, earliest->_tag);
    for (const Message& message : _messages) {
        if (message._tag != earliest->_tag) {
            appendBigEndian32(_packet, static_cast<std::uint32_t>(message._size + overhead - 4));
            appendHeader(_packet, message._tag);
        }
        appendBigEndian32(_packet, static_cast<std::uint32_t>(message._size));
        const auto begin = _bytes.begin() + static_cast<std::ptrdiff_t>(message._begin);
        _packet.insert(_packet.end(), begin, begin + static_cast<std::ptrdiff_t>(message._size));
    }
}

} // namespace Trovio::Nodes
