#pragma once

#include <cstdint>

namespace Trovio {

/// What became of the records that reached an in-slot. Whenever nobody pushes or pops:
/// stored == overwritten + taken + waiting.
struct InSlotCounts {
    std::uint64_t stored = 0;      // every record pushed into the slot
    std::uint64_t overwritten = 0; // replaced, or dropped from a full ring, before anybody took it
    std::uint64_t taken = 0;       // handed to a reader by pop()
    std::uint64_t waiting = 0;     // unread
    bool operator==(const InSlotCounts&) const = default;
};

} // namespace Trovio
