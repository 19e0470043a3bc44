#pragma once

#include "nodes/osc/OscMethod.h"
#include "nodes/osc/OscUnknownAddresses.h"
#include "nodes/osc/address/OscAddressMap.h"
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
    Counter& _withoutMemory;
};

/// Takes messages to the methods whose address they name, or whose address their pattern matches.
/// Threads: one at a time visits; getRemarks() from any, under any lock but the log's.
class OscDispatcher final : public OscMessageVisitor {
public:
    OscDispatcher(const std::vector<OscAddress>& addresses, OscInCounters& counters);

    void visit(const OscMessage& message) override;

    void forEachSlot(const std::function<void(BasicOutSlot&)>& use);

    /// Why a slot has no values, or not all. Where nothing reached a slot, the text begins with what the node as a
    /// whole received (`any`: whether it received anything) and ends with what it lost.
    std::vector<RemarkInfo> getRemarks(const std::string& received, bool any, const std::string& lost) const
        OSTREL_EXCLUDES(_lock);

private:
    struct Method {
        OscAddress _address;
        std::unique_ptr<OscMethod> _method;
        OscAddressMap _map; // for patterns
    };
    /// Messages of one method whose arguments made no value.
    struct Mismatches {
        std::uint64_t _count = 0;
        std::string _tags; // of the last, shown
        bool _differ = false;
    };

    static std::vector<Method> makeMethods(const std::vector<OscAddress>& addresses);
    std::vector<std::string_view> listAddresses() const;
    void visitMatching(const OscMessage& message);
    void deliver(std::size_t position, const OscMessage& message);
    void countMismatch(std::size_t position, const OscMessage& message) OSTREL_EXCLUDES(_lock);
    Mismatches getMismatches(std::size_t position) const OSTREL_EXCLUDES(_lock);
    std::string describeMismatches(std::size_t position) const;

    OscInCounters& _counters;
    const std::vector<Method> _methods;
    std::unordered_map<std::string_view, std::size_t> _positions; // keys refer into _methods
    OscUnknownAddresses _unknown;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::vector<Mismatches> _mismatches OSTREL_GUARDED_BY(_lock); // of each method
};

} // namespace Trovio::Nodes
