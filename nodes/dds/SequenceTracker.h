#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>

namespace Trovio::Nodes {

/// The last sequence number of each writer of a topic, so that no sample is delivered twice: to a reader that joins
/// again after the connection was interrupted, the library sends anew what it has kept.
/// A writer is recognised by its endpoint handle, by its GUID, which survives an interruption, and by an id of its own,
/// which survives a change of its address. While a writer is active, another one that claims its id does not displace
/// it.
/// Remembers a bounded number of writers; the one that was quiet longest is forgotten first.
/// Threads: one at a time.
class SequenceTracker {
public:
    using Guid = std::array<std::uint8_t, 16>; // zeros: unknown
    struct Writer {
        std::uint64_t _endpoint;
        std::uint64_t _id;
    };
    struct Verdict {
        bool _isNew;
        /// Samples of this writer between the last one and this, as its numbers say. A peer may write any number: one
        /// that skips more than any line could have lost tells nothing of samples that were, and counts as none.
        std::uint64_t _missed;
    };

    bool knows(std::uint64_t endpoint) const { return _endpoints.contains(endpoint); }
    /// Adds an endpoint. Where its GUID is known, it goes on as that writer.
    void introduce(std::uint64_t endpoint, const Guid& guid);

    /// Number 0 is always new: its writer does not count.
    Verdict note(const Writer& writer, std::uint64_t number);

private:
    struct Last {
        Guid _guid{};
        std::uint64_t _id = 0;
        std::uint64_t _number = 0; // 0: none yet
        std::uint64_t _turn = 0;
    };
    /// The endpoint, other than this one, through which the writer with that id last sent, up to this number.
    std::optional<std::uint64_t> findEarlier(std::uint64_t id, std::uint64_t number) const;

    std::map<std::uint64_t, Last> _endpoints;
    std::uint64_t _turn = 0;
};

} // namespace Trovio::Nodes
