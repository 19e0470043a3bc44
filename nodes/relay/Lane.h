#pragma once

#include <cstddef>
#include <optional>
#include <vector>

namespace Trovio {
class BasicInSlot;
class BasicOutSlot;
} // namespace Trovio

namespace Trovio::Nodes {

/// What became of a record.
enum class Outcome : std::size_t {
    Sent,
    BadValue,  // a component is no finite number, or a rotation has no direction
    BadResult, // the result does not fit into the type
    BadStamp,  // the time stamp is not after the one before it, where that matters
    Kept,      // nothing is wrong with it, and nothing is sent because of it
};

/// The slots of a relay, and what happens to records on their way.
/// Threads: any thread uses the slots; one thread relays.
class Lane {
public:
    virtual ~Lane() = default;
    virtual std::vector<BasicInSlot*> getInSlots() = 0;
    virtual std::vector<BasicOutSlot*> getOutSlots() = 0;

    /// Takes the next waiting record and sends what becomes of it. Nothing if none waits that it could take.
    virtual std::optional<Outcome> relayNext() = 0;
};

} // namespace Trovio::Nodes
