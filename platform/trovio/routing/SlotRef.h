#pragma once

#include "trovio/BasicInSlot.h"
#include "trovio/BasicOutSlot.h"
#include "trovio/routing/Relay.h"

namespace Trovio {

/// A slot that scopes refer to, and the relay of the node that it belongs to.
struct SlotRef {
    Slot* _slot;
    Relay* _relay; // null where nothing is relayed

    /// One of these two is null.
    BasicInSlot* in() const { return _slot->isInSlot() ? static_cast<BasicInSlot*>(_slot) : nullptr; }
    BasicOutSlot* out() const { return _slot->isInSlot() ? nullptr : static_cast<BasicOutSlot*>(_slot); }

    bool is(Slot::Direction direction) const { return _slot->isInSlot() == (direction == Slot::Direction::In); }
};

} // namespace Trovio
