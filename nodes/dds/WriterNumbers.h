#pragma once

#include <cstdint>
#include <map>
#include <optional>

namespace Trovio::Nodes {

/// Knows for each writer of a topic which sample came last, so that none is taken twice: one that joins again after a
/// break in the line is sent the last sample anew. Such a writer may have become another end for the library, and says
/// by an id of its own who it was. No end counts for another one while that goes on: whoever takes the id of somebody
/// else shuts nobody out.
/// Remembers a bounded number of ends; the one that was quiet longest is forgotten first.
/// Threads: one at a time.
class WriterNumbers {
public:
    struct Verdict {
        bool _isNew;
        std::uint64_t _missed; // samples of this writer between the last one and this, as its numbers say
    };

    /// end: as the library knows it; writer: the id. Number 0 is always new: its writer does not count.
    Verdict note(std::uint64_t end, std::uint64_t writer, std::uint64_t number);

private:
    struct Last {
        std::uint64_t _writer;
        std::uint64_t _number;
        std::uint64_t _turn;
    };
    /// The one that came last of a writer that was another end then, up to this number.
    std::optional<std::uint64_t> findEarlier(std::uint64_t writer, std::uint64_t number) const;
    void forgetOne();

    std::map<std::uint64_t, Last> _last; // by end
    std::uint64_t _turn = 0;
};

} // namespace Trovio::Nodes
