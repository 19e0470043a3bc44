#pragma once

#include "trovio/BasicOutSlot.h"
#include "trovio/Time.h"

#include <span>
#include <string>

namespace Monitor {

/// An out-slot that pushes what messages say.
/// Ownership: owns the slot; whoever wires it disconnects it first.
class AnySource {
public:
    AnySource() = default;
    AnySource(const AnySource&) = delete;
    AnySource& operator=(const AnySource&) = delete;
    virtual ~AnySource() = default;

    virtual Trovio::BasicOutSlot& slot() = 0;
    /// Pushes the value with this time stamp. False, with what is wrong and where, and pushes nothing, for bytes that
    /// are no such message. One thread at a time; in-slots receive on it.
    virtual bool write(std::span<const std::byte> message, const Trovio::Time& stamp, std::string& problem) = 0;
};

} // namespace Monitor
