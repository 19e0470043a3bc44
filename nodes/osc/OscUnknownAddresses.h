#pragma once

#include "base/Mutex.h"
#include "nodes/osc/packet/OscPacket.h"
#include <map>
#include <string>
#include <vector>

namespace Trovio::Nodes {

/// Addresses that came and that no slot has, or none for those arguments. The first few are remembered, and each of
/// them is named once in the log, with its arguments and the entry of 'in' that may take it; the messages of all others
/// are only counted. Threads: note() from one thread; the rest from any, under any lock but the log's.
class OscUnknownAddresses {
public:
    /// How many addresses are remembered: no more than one source may log in a second.
    static constexpr std::size_t MaxNamed = 16;

    /// known: the addresses that have slots.
    explicit OscUnknownAddresses(std::vector<std::string> known);

    void note(const OscMessage& message) OSTREL_EXCLUDES(_lock);

    /// ", 20 for /my/devise (fff), 3 for /x (i) and 7 for others": those that may be misspelt for the address first,
    /// then the busiest. Empty if none came.
    std::string describeFor(std::string_view address) const OSTREL_EXCLUDES(_lock);

private:
    struct Count {
        std::string _tags; // shown
        std::string_view _nearest;
        std::uint64_t _count = 0;
    };

    using Named = std::map<std::string, Count, std::less<>>;

    bool countKnown(std::string_view address) OSTREL_EXCLUDES(_lock);
    void remember(const OscMessage& message, std::string_view address) OSTREL_EXCLUDES(_lock);

    const std::vector<std::string> _addresses;
    const std::vector<std::string_view> _known; // refer into _addresses

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    Named _named OSTREL_GUARDED_BY(_lock);
    std::uint64_t _others OSTREL_GUARDED_BY(_lock) = 0; // messages of all that are not remembered
};

} // namespace Trovio::Nodes
