#pragma once

#include "nodes/osc/address/OscAddressList.h"
#include "nodes/osc/packet/OscWriter.h"
#include "trovio/Time.h"
#include <functional>
#include <memory>

namespace Trovio {
class BasicInSlot;
}

namespace Trovio::Nodes {

/// An address that messages are sent to, and the in-slot whose records they carry.
/// Threads: any thread pushes into the slot; one thread does the rest.
class OscSender {
public:
    virtual ~OscSender() = default;
    virtual BasicInSlot& getSlot() = 0;

    /// Takes the oldest waiting record, writes it as a message, and returns its time stamp. Nothing if none waits.
    virtual std::optional<Time> take(OscWriter& writer) = 0;

    /// arrived is called on the pushing thread after each record, under locks: it may only wake somebody.
    static std::unique_ptr<OscSender> create(const OscAddress& address, unsigned capacity,
                                             std::function<void()> arrived);
};

} // namespace Trovio::Nodes
