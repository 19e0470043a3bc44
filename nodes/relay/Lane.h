#pragma once

#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"
#include <optional>
#include <vector>

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

/// From one in-slot to one out-slot of its type. Process changes a record in place, and says whether it is to be sent:
/// Outcome operator()(Data<T>&).
template <class T, class Process>
class TypedLane final : public Lane {
public:
    TypedLane(unsigned capacity, Process process) : _process(std::move(process)), _in("in", capacity), _out("out") {}

    std::vector<BasicInSlot*> getInSlots() override { return {&_in}; }
    std::vector<BasicOutSlot*> getOutSlots() override { return {&_out}; }
    OutSlot<T>& getOutSlot() { return _out; }

    std::optional<Outcome> relayNext() override
    {
        if (_in.empty())
            return std::nullopt;
        Data<T> record = _in.pop();
        const Outcome outcome = _process(record);
        if (outcome == Outcome::Sent)
            _out.push(record);
        return outcome;
    }

private:
    Process _process;
    BufferedInSlot<T> _in;
    OutSlot<T> _out;
};

} // namespace Trovio::Nodes
