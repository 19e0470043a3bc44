#pragma once

#include <cstdint>
#include <string>

namespace Ostrel {

/// How a field takes part in events.
enum class FieldAccess : int {
    Setting = 1,  // set by its node, sends
    EventIn = 2,  // asked by receive(), then sends
    EventOut = 4, // set by its node, sends
    Exposed = 7,  // asked by receive(); sends when it forwards or when its own node is the caller
};

/// What a node's type says about one of its fields. Outlives the fields that refer to it.
struct FieldDescription {
    /// Bit in _flags: an Exposed field forwards what it receives, and a change during its own sending is reported.
    static constexpr std::uint32_t Forwards = 8;

    std::string _name;
    std::uint32_t _mask = 1; // the field's bit in the change masks of its node
    std::uint32_t _flags = 0;
    FieldAccess _access = FieldAccess::Exposed;
};

} // namespace Ostrel
