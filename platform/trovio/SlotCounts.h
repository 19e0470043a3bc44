#pragma once

#include "trovio/Time.h"
#include <cstdint>

namespace Trovio {

/// What became of the records that an in-slot stored. Whenever nobody pushes or pops:
/// stored == overwritten + taken + waiting.
struct InSlotCounts {
    std::uint64_t stored = 0;      // every record pushed into the slot, but those that could not be copied
    std::uint64_t overwritten = 0; // replaced, or dropped from a full ring, before anybody took it
    std::uint64_t taken = 0;       // handed to a reader or a frame
    std::uint64_t waiting = 0;     // unread
    bool operator==(const InSlotCounts&) const = default;
};

/// The time stamps of the records that passed, in the order in which they came.
struct StampCounts {
    Time _last;                   // of the record that came last and was stamped with a number
    std::uint64_t _backwards = 0; // stamped before the one that came before it, or with no number
    std::uint64_t _future = 0;    // stamped later than the clock said when they came
};

/// How an out-slot is used.
struct OutSlotActivity {
    std::uint64_t _written = 0;
    StampCounts _stamps;
};

/// How an in-slot and its reader do.
struct InSlotActivity {
    InSlotCounts _counts;
    StampCounts _stamps;
    Time _lastTaken;                  // stamp of the record that was taken last
    std::uint64_t _lostSinceTake = 0; // overwritten since then
    std::uint64_t _interrupts = 0;
    bool _readerInterrupted = false; // nothing was taken since the last interrupt
    std::uint64_t _notStored = 0;    // pushed, but there was no memory for the copy
    std::uint64_t _cutShort = 0;     // frames that left records to the next one
};

} // namespace Trovio
