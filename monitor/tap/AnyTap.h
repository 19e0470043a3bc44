#pragma once

#include "monitor/codec/Bytes.h"
#include "trovio/BasicInSlot.h"
#include "trovio/Time.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace Monitor {

/// A record as it passed a slot.
struct TapRecord {
    std::int64_t _arrival = 0; // nanoseconds of the wall clock, when it was pushed
    Trovio::Time _stamp;
    Bytes _cdr; // the value as a message
};

/// Where a tap writes the records that it kept, each over one of before, whose memory is used again.
class TapSink {
public:
    virtual ~TapSink() = default;
    /// What the next record is written over; the same again until it is kept.
    virtual TapRecord& place() = 0;
    virtual void keep() = 0;
    /// The same with a record whose message is not written yet: `encode` does so once, and holds the value until then.
    virtual void keep(std::function<void(Bytes&)> encode) = 0;
};

/// How much a tap keeps between two drains.
struct TapSize {
    std::size_t _bytes = 64 * 1024; // of records with plain values, and once more of texts too long to stand in them
    std::size_t _handles = 4;       // of images and arrays, each of which keeps its pooled object, in the ring;
                                    // as many again while those of a drain are written
};

/// What a drain saw of a tap.
struct TapState {
    std::uint64_t _refused; // records so far
    bool _isRoomy;          // the ring has many places, and nearly all of them were free
};

/// Looks at what is pushed: an in-slot whose push() never waits, allocates or calls out, and a ring that somebody
/// drains.
class AnyTap {
public:
    AnyTap() = default;
    AnyTap(const AnyTap&) = delete;
    AnyTap& operator=(const AnyTap&) = delete;
    virtual ~AnyTap() = default;

    virtual Trovio::BasicInSlot& slot() = 0;
    /// Writes what the ring holds into `sink`, oldest first; images and arrays only as values, which are written when
    /// it is their turn. A record that there is no memory for, or that the sink does not take, counts as refused here;
    /// one that cannot be written later is for whoever keeps the sink to count.
    /// wallAtZero: what the wall clock says, in nanoseconds, when the steady clock says 0. One thread at a time, not a
    /// pushing one.
    virtual TapState drain(std::int64_t wallAtZero, TapSink& sink) = 0;
    /// Records that were pushed into it: those that drain() handed out or will, and those that it refused.
    virtual std::uint64_t seen() const = 0;
    /// Records that found the ring full, or no memory.
    virtual std::uint64_t refused() const = 0;
};

/// A tap for slots of that type; its memory is taken at once. Null if that is no slot type.
std::unique_ptr<AnyTap> makeTap(std::string_view slotType, const TapSize& size);

} // namespace Monitor
