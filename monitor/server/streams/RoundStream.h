#pragma once

#include "monitor/server/streams/Stream.h"

#include <algorithm>
#include <utility>

namespace Monitor {

/// A stream of texts that gathers the records of a round into one message. Threads: the server's.
class RoundStream : public Stream {
protected:
    /// Adds a record to the round, or drops it where the queue would have no room for it. Whoever puts more than 64
    /// bytes around the round may find that there is none after all.
    bool add(const std::string& text)
    {
        const std::size_t bytes = _round.cost() + around + text.size();
        if ((_round._records > 0 && bytes > ClientQueue::Room) || !queue().hasRoomFor(bytes)) {
            queue().drop(1);
            return false;
        }
        _round._bytes += text;
        ++_round._records;
        return true;
    }
    /// What was gathered; then the next round begins, which is about as long.
    OutMessage takeRound()
    {
        constexpr std::size_t longest = 256 * 1024; // that is counted on
        OutMessage next;
        next._bytes.reserve(std::min(_round._bytes.size(), longest));
        return std::exchange(_round, std::move(next));
    }
    bool isEmpty() const { return _round._records == 0; }

    /// How many dropped records the client has not been told of, and that it is now.
    std::uint64_t untold() const { return queue().dropped() - _told; }
    void tell() { _told = queue().dropped(); }

private:
    static constexpr std::size_t around = 64; // bytes
    OutMessage _round;
    std::uint64_t _told = 0; // of the dropped ones
};
} // namespace Monitor
