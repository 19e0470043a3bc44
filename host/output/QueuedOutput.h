#pragma once

#include "base/Mutex.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace Host {

/// Writes to a descriptor from a thread of its own, so that whoever has something to say never waits for whoever reads.
/// Text comes in units that stay whole: a line, some lines, a screen. A unit that finds no room is dropped, and so is
/// all that follows until half of the room is free again; then a line of its own tells how many lines are missing.
/// Ownership: the descriptor stays the caller's, and open until finish() or the end of the process.
/// Threads:   any. No lock is held while something is written.
class QueuedOutput {
public:
    /// Bytes that may wait; a longer unit is taken only where nothing waits.
    static constexpr std::size_t Capacity = 8u << 20;
    using Deadline = std::chrono::steady_clock::time_point;
    /// The line, with its end, that tells of lines dropped in one gap, and of how many there were so far; of 0 at the
    /// end.
    using GapLine = std::function<std::string(std::uint64_t dropped, std::uint64_t inAll)>;

    /// Throws std::system_error when there can be no more threads.
    QueuedOutput(int descriptor, GapLine gapLine);
    /// Discards what still waits. A thread that is stuck in a write is left running, with what it needs.
    ~QueuedOutput();
    QueuedOutput(const QueuedOutput&) = delete;
    QueuedOutput& operator=(const QueuedOutput&) = delete;

    /// False where the unit was dropped, or nothing can be written any more. Never blocks, never throws.
    bool put(std::string_view unit) noexcept;
    /// The last words: taken where there is no room, too, and behind the line about the gap, if there is one.
    void putLast(std::string_view unit) noexcept;
    /// Tells at the end how many lines were dropped in all, if any were.
    void tellTotal() noexcept;

    /// Bytes that were put so far, and whether as many have been written: a screen is redrawn only once the last one
    /// was.
    std::uint64_t position() const;
    bool hasWritten(std::uint64_t position) const;

    /// Open while somebody can read; then ReaderGone where a pipe or a terminal was closed, Failed for all else.
    enum class State { Open, ReaderGone, Failed };
    State state() const;
    /// The error of Failed, as of errno.
    int error() const;

    /// Lines that were dropped so far.
    std::uint64_t dropped() const;

    /// Waits until everything is written, nothing can be, or the deadline has come; then nothing more is written, and
    /// nothing taken. Returns what was left.
    std::string finish(Deadline deadline);

    /// What could not be written, once the state is not Open any more.
    std::string takeUnwritten();

    /// Waits at most a second until all of these objects have written what they have, and no longer than `patience`
    /// while nothing of it is taken. For a handler of signals.
    static void waitForAll(std::chrono::milliseconds patience = std::chrono::seconds(1)) noexcept;

private:
    class Queue;
    const std::shared_ptr<Queue> _queue; // shared with the thread, which may be stuck for ever
    std::thread _thread;
};
} // namespace Host
