#pragma once

#include "nodes/osc/packet/OscArguments.h"
#include "trovio/Time.h"
#include <optional>
#include <string>

namespace Trovio::Nodes {

/// How deep bundles may be nested.
constexpr unsigned MaxOscDepth = 8;

/// How many messages of a packet may address several slots by a pattern: each is matched against every slot.
constexpr unsigned MaxOscPatterns = 16;

/// One message of a packet, which it refers into.
struct OscMessage {
    std::string_view _address;
    std::string_view _tags; // without the comma
    Bytes _data{};          // of the arguments
    Time _stamp;            // of the innermost bundle around it, or the packet's arrival

    OscArguments getArguments() const { return {_tags, _data}; }
};

/// What is told of each message of a packet, in order.
class OscMessageVisitor {
public:
    virtual void visit(const OscMessage& message) = 0;

protected:
    ~OscMessageVisitor() = default;
};

/// Calls the visitor for every message of the packet. A packet that is malformed anywhere is refused as a whole, before
/// the first call; the result then says what is wrong with it. Allocates nothing otherwise.
std::optional<std::string> readOscPacket(Bytes packet, const Time& arrival, OscMessageVisitor& visitor);

} // namespace Trovio::Nodes
