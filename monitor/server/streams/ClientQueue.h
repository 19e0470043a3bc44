#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>

namespace Monitor {

/// One message, whole.
struct OutMessage {
    std::string _bytes;
    std::size_t _records = 0; // in it
    bool _isBinary = false;

    /// Bytes that it takes in memory.
    std::size_t cost() const { return _bytes.size() + sizeof(OutMessage) + 16; }
};

/// What waits for one client. Records that find no room are dropped and counted, so that a client that reads slowly
/// holds up nobody; what it is told beside them has some room more.
/// Invariant: offered records = sent + waiting + dropped.
/// Threads:   the server's.
class ClientQueue {
public:
    static constexpr std::size_t Room = 4 << 20; // bytes of records, and as many of words

    /// Called when something is there to be sent.
    void setWake(std::function<void()> wake) { _wake = std::move(wake); }

    /// Whether records of so many bytes would find room. They do where no others wait: one may be larger than the room.
    bool hasRoomFor(std::size_t bytes) const { return _recordBytes == 0 || _recordBytes + bytes <= Room; }
    /// Puts records, or drops them all.
    bool putRecords(OutMessage message);
    void drop(std::uint64_t records) { _dropped += records; }
    /// What is no record. False, and nothing is put, where even that has no more room: the client does not listen.
    bool putWords(std::string text);
    /// Nothing comes any more; the client goes when the rest is sent.
    void finish();

    bool empty() const { return _waiting.empty(); }
    bool isFinished() const { return _finished; }
    /// The next message, which counts as waiting until sent() is called.
    const OutMessage& front() const { return _waiting.front(); }
    void sent();

    std::uint64_t sentRecords() const { return _sentRecords; }
    std::uint64_t waitingRecords() const { return _waitingRecords; }
    std::uint64_t dropped() const { return _dropped; }

private:
    void put(OutMessage message);

    std::function<void()> _wake;
    std::deque<OutMessage> _waiting;
    std::size_t _recordBytes = 0, _wordBytes = 0; // that wait
    std::uint64_t _sentRecords = 0, _waitingRecords = 0, _dropped = 0;
    bool _finished = false;
};
} // namespace Monitor
