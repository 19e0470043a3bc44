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

/// How much a tap keeps between two drains.
struct TapSize {
    std::size_t _bytes = 64 * 1024; // of plain values
    std::size_t _handles = 4;       // of images and arrays, each of which keeps its pooled object
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
    /// Hands out what the ring holds, oldest first. One thread at a time, not a pushing one.
    virtual void drain(const std::function<void(TapRecord&&)>& use) = 0;
    /// Records that were pushed into it, refused ones included.
    virtual std::uint64_t seen() const = 0;
    /// Records that found the ring full.
    virtual std::uint64_t refused() const = 0;
};

/// A tap for slots of that type. Null if that is no slot type.
std::unique_ptr<AnyTap> makeTap(std::string_view slotType, const TapSize& size);

} // namespace Monitor
