#pragma once

#include "trovio/Slot.h"
#include "trovio/StampWatch.h"

namespace Trovio {

class BasicInSlot;

/// The sending end, without its value type.
/// Threads: any thread, any operation.
class BasicOutSlot : public Slot {
public:
    Direction getDirection() const override { return Direction::Out; }

    /// Does nothing for null or for an in-slot of another value type.
    virtual void connect(BasicInSlot* inSlot) = 0;
    virtual void disconnect(BasicInSlot* inSlot) = 0;

    /// A new, unconnected, unbuffered in-slot of the same value type, without a name. The caller owns it.
    virtual BasicInSlot* createMatchingInSlot() = 0;

    /// The first connection came, the last one went.
    virtual void startOutSlot() { setActive(true); }
    virtual void stopOutSlot() { setActive(false); }

    /// Says that records come when something changes and not at a rate, so that the age of the last one is no fault.
    /// Only before the slot is added to a namespace.
    void setWrittenOnChange() { _writtenOnChange = true; }
    bool isWrittenOnChange() const { return _writtenOnChange; }

    /// How many records were pushed.
    std::uint64_t getWritten() const OSTREL_EXCLUDES(_dataLock);
    OutSlotActivity getActivity() const OSTREL_EXCLUDES(_dataLock);

protected:
    explicit BasicOutSlot(const std::string& name)
        : Slot(name, Direction::Out, Ostrel::LockRank::OutSlotListeners, Ostrel::LockRank::OutSlotData)
    {
    }

    bool hasValue() const OSTREL_REQUIRES(_dataLock) { return _written != 0; }

    /// Notes that a record with that time stamp was pushed; each call counts one.
    void setHasValue(const Time& stamp) OSTREL_REQUIRES(_dataLock)
    {
        ++_written;
        _stamps.note(stamp);
    }

private:
    std::uint64_t _written OSTREL_GUARDED_BY(_dataLock) = 0;
    StampWatch _stamps OSTREL_GUARDED_BY(_dataLock);
    bool _writtenOnChange = false;
};

} // namespace Trovio
