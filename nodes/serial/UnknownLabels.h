#pragma once

#include "base/Mutex.h"
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Trovio::Nodes {

/// Labels that came and that no slot has. The first few are remembered, and each of them is named once in the log, with
/// the entry of 'in' that would take it; the lines of all others are only counted.
/// Threads: note() from one thread; the rest from any, under any lock but the log's.
class UnknownLabels {
public:
    static constexpr std::size_t MaxNamed = 16;

    explicit UnknownLabels(std::vector<std::string> known) : _known(std::move(known)) {}

    void note(std::string_view label, std::string_view content) OSTREL_EXCLUDES(_lock);

    /// ", 20 for accell, 3 for temp and 7 for others": the busiest first. Empty if none came.
    std::string describe() const OSTREL_EXCLUDES(_lock);

private:
    const std::vector<std::string> _known;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::map<std::string, std::uint64_t, std::less<>> _named OSTREL_GUARDED_BY(_lock);
    std::uint64_t _others OSTREL_GUARDED_BY(_lock) = 0;
};

} // namespace Trovio::Nodes
