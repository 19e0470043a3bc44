#pragma once

#include "nodes/osc/packet/OscArguments.h"
#include "nodes/osc/packet/OscTime.h"
#include <functional>
#include <vector>

namespace Trovio::Nodes {

enum class Bundling { Auto, Always, Never }; // in the order of the setting's choices

/// Gathers messages into packets that travel in one piece.
/// Several messages make a bundle, tagged with the earliest of their times; a message with a later time goes into a
/// nested bundle, so that no message loses its time. A single message goes without a bundle, unless bundles are always
/// wanted.
/// Threads: one.
class OscPacker {
public:
    using Send = std::function<void(Bytes packet, std::size_t messages)>;
    OscPacker(Bundling bundling, Send send) : _bundling(bundling), _send(std::move(send)) {}

    /// Sends what was gathered before if the message does not fit into one packet with it.
    void add(Bytes message, const Time& stamp);
    /// Sends what is left.
    void flush();

private:
    struct Message {
        OscTimeTag _tag;
        std::size_t _begin, _size; // in _bytes
    };

    void writeBundle();

    const Bundling _bundling;
    const Send _send;
    std::vector<std::uint8_t> _bytes;
    std::vector<Message> _messages;
    std::vector<std::uint8_t> _packet;
};

} // namespace Trovio::Nodes
