#pragma once

#include "monitor/codec/SlotCodec.h"
#include "monitor/server/streams/ClientQueue.h"
#include "monitor/tap/AnyTap.h"

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

namespace Monitor {

/// A record as a stream gets it.
struct SeenRecord {
    std::uint32_t _number; // by which the stream knows the slot
    const std::string& _label;
    const SlotCodec& _codec;
    const TapRecord& _record;
};

/// One client that gets records as they come. Its connection sends what it puts into its queue.
/// Threads: the server's.
class Stream {
public:
    static constexpr std::chrono::milliseconds FastestPace{16}, SlowestPace{100};

    Stream() = default;
    virtual ~Stream()
    {
        if (_gone)
            _gone();
    }
    Stream(const Stream&) = delete;
    Stream& operator=(const Stream&) = delete;

    ClientQueue& queue() { return _queue; }
    const ClientQueue& queue() const { return _queue; }
    /// Called where the client has to wait, see holdOff().
    void setHoldOff(std::function<std::function<void()>()> holdOff) { _holdOff = std::move(holdOff); }
    /// Called when it goes.
    void whenGone(std::function<void()> gone) { _gone = std::move(gone); }

    /// The connection stands.
    virtual void opened() {}
    /// The client says something.
    virtual void received(std::string_view message, bool isBinary) = 0;
    /// A slot that it watches has a new record.
    virtual void take(const SeenRecord& seen) = 0;
    /// Records of the slot of that number found no room before this client's queue.
    virtual void miss(std::uint32_t /*number*/, std::uint64_t records) { _queue.drop(records); }
    /// After the records of one round.
    virtual void endRound() = 0;
    /// How long it may wait from one round to the next.
    virtual std::chrono::milliseconds pace() const { return FastestPace; }
    /// Whether it is to hear what slots there are.
    virtual bool offersSlots() const { return false; }
    /// Somebody has looked at the slots of the tree, as about once a second; whether they are others now.
    virtual void slotsSeen(bool /*areOthers*/) {}
    /// All that was put is sent.
    virtual void drained() {}

protected:
    /// What the client says further is not read before the function that this returns is called. It keeps the
    /// connection alive, so whoever has it calls it, or lets it go, on the server's thread.
    std::function<void()> holdOff()
    {
        return _holdOff ? _holdOff() : [] {};
    }

private:
    ClientQueue _queue;
    std::function<std::function<void()>()> _holdOff;
    std::function<void()> _gone;
};
} // namespace Monitor
