#pragma once

#include "nodes/relay/Lane.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

namespace Trovio::Nodes {

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
