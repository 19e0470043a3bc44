#pragma once

#include "nodes/osc/OscMethod.h"
#include "nodes/osc/OscUnknownAddresses.h"
#include "nodes/osc/address/OscAddressMap.h"
#include "trovio/Node.h"
#include <deque>
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

/// How many addresses that '*' stands for get slots.
constexpr std::size_t MaxOscGrown = 256;

/// Takes messages to the methods whose address they name, or whose address their pattern matches. An address that an
/// entry with '*' means gets methods with its first message that fits, unless it has an entry of its own.
/// Threads: one at a time visits; getRemarks() from any, under any lock but the log's.
class OscDispatcher final : public OscMessageVisitor {
public:
    /// Shows slots that have come to be while messages are read: all, or it throws and none. Takes the tree lock.
    using Show = std::function<void(const std::vector<BasicOutSlot*>& slots)>;

    OscDispatcher(const std::vector<OscEntry>& entries, OscInCounters& counters, Show show);

    void visit(const OscMessage& message) override;

    void forEachSlot(const std::function<void(BasicOutSlot&)>& use);

    /// Why a slot has no values, or not all. Where nothing reached a slot, the text begins with what the node as a
    /// whole received (`any`: whether it received anything) and ends with what it lost. Slots that '*' may yet bring
    /// are spoken of under their label with the '*'.
    std::vector<RemarkInfo> getRemarks(const std::string& received, bool any, const std::string& lost) const
        OSTREL_EXCLUDES(_lock);

private:
    struct Method {
        explicit Method(const OscEntry& entry) : _method(entry) {}
        OscMethod _method;
        std::size_t _number = 0; // in what is shown
    };
    /// An address, and the methods that it has.
    struct Place {
        explicit Place(std::string_view address) : _address(address), _map(address) {}
        const std::string _address;
        const OscAddressMap _map; // for patterns
        std::deque<Method> _methods;
    };
    /// An entry with '*', and a method that only tries whether messages fit.
    struct Star {
        explicit Star(const OscEntry& entry) : _entry(entry), _trial(entry) {}
        const OscEntry _entry;
        Method _trial;
    };
    /// A method as other threads see it.
    struct Shown {
        const OscMethod* _method;
        std::string _address;
        bool _isStar;
        bool _isGrown = false; // some address has slots by this star
        // Messages whose arguments made no value.
        std::uint64_t _mismatches = 0;
        std::string _tags{}; // of the last, shown
        bool _differ = false;
    };
    /// What became of a message, and who would have taken it with other arguments.
    struct Outcome {
        bool _isTaken = false;
        const Method* _differing = nullptr;

        void note(OscFit fit, const Method& method);
    };

    static std::vector<std::string> listAddresses(const std::vector<OscEntry>& entries);
    void addStar(const OscEntry& entry) OSTREL_EXCLUDES(_lock);
    void keep(std::unique_ptr<Place> place, const Show& show) OSTREL_EXCLUDES(_lock);
    void visitMatching(const OscMessage& message);
    bool visitStars(const OscMessage& message);
    Place* grow(const std::string& address, const std::vector<Star*>& stars) OSTREL_EXCLUDES(_lock);
    bool keepIfShown(std::unique_ptr<Place> place) OSTREL_EXCLUDES(_lock);
    static std::string describeSlots(const Place& place);
    void deliver(Place& place, const OscMessage& message);
    void settle(const Outcome& outcome, const OscMessage& message);
    void noteUnknown(const OscMessage& message);
    void countMismatch(const Method& method, const OscMessage& message) OSTREL_EXCLUDES(_lock);
    static std::string describeMismatches(const Shown& shown);

    OscInCounters& _counters;
    const Show _show;
    std::vector<std::unique_ptr<Place>> _places;
    std::unordered_map<std::string_view, Place*> _byAddress; // keys refer into _places
    std::deque<Star> _stars;
    std::size_t _grown = 0; // addresses that stars brought
    OscUnknownAddresses _unknown;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::vector<Shown> _shown OSTREL_GUARDED_BY(_lock); // of each method
};

} // namespace Trovio::Nodes
