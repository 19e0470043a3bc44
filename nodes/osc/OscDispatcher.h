#pragma once

#include "nodes/osc/OscInLane.h"
#include "trovio/Node.h"
#include <functional>
#include <unordered_map>

namespace Trovio::Nodes {

/// What became of messages; shown by the node.
struct OscInCounters {
    Counter& _packets;    // received whole
    Counter& _messages;   // in packets that are not malformed
    Counter& _values;     // pushed into slots
    Counter& _mismatched; // their arguments make no value of the slot's type
    Counter& _unknown;    // of addresses that nobody listens to
    Counter& _malformed;  // packets
    Counter& _dropped;    // packets that the kernel had no place for
    Counter& _unread;     // packets that still waited when the node stopped
};

/// Takes messages to the lanes whose address they name, or whose address their pattern matches.
/// Threads: one at a time.
class OscDispatcher final : public OscMessageVisitor {
public:
    OscDispatcher(const std::vector<OscAddress>& addresses, OscInCounters& counters);

    void visit(const OscMessage& message) override;

    /// Calls use(label, slot) for every lane.
    void forEachSlot(const std::function<void(const std::string&, BasicOutSlot&)>& use);

private:
    struct Lane {
        OscAddress _address;
        std::unique_ptr<OscInLane> _lane;
        bool _mismatchReported = false; // once is enough: the sender will go on
    };

    void visitMatching(const OscMessage& message);
    void deliver(Lane& lane, const OscMessage& message);

    OscInCounters& _counters;
    std::vector<Lane> _lanes;
    std::unordered_map<std::string_view, std::size_t> _positions; // keys refer into _lanes
};

} // namespace Trovio::Nodes
