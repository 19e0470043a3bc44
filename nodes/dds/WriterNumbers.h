#pragma once

#include <cstdint>
#include <map>

namespace Trovio::Nodes {

/// Knows for each writer of a topic which sample came last, so that none is taken twice: one that joins again after a
/// break in the line is sent the last sample anew.
/// Remembers a bounded number of writers; the one that was quiet longest is forgotten first.
/// Threads: one at a time.
class WriterNumbers {
public:
    struct Verdict {
        bool _isNew;
        std::uint64_t _missed; // samples of this writer between the last one and this
    };

    /// Number 0 is always new: its writer does not count.
    Verdict note(std::uint64_t writer, std::uint64_t number);

private:
    struct Last {
        std::uint64_t _number;
        std::uint64_t _turn;
    };
    void forgetOne();

    std::map<std::uint64_t, Last> _last;
    std::uint64_t _turn = 0;
};

} // namespace Trovio::Nodes
