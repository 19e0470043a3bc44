#pragma once

#include "nodes/generator/Wave.h"
#include "trovio/Time.h"
#include <memory>

namespace Trovio {
class BasicOutSlot;
}

namespace Trovio::Nodes {

/// What a generator produces: an out-slot of some type, and the values for it.
/// Threads: one thread produces; the slot itself is for any thread.
class Signal {
public:
    virtual ~Signal() = default;
    virtual BasicOutSlot& getSlot() = 0;

    /// Pushes the record of one tick.
    virtual void produce(const Tick& tick, const Time& stamp) = 0;

    /// The signal that the settings ask for. Throws InvalidFieldException.
    static std::unique_ptr<Signal> create(const Settings& settings);
};

} // namespace Trovio::Nodes
