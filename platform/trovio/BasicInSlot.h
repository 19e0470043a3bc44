#pragma once

#include "base/Semaphore.h"
#include "trovio/Slot.h"
#include "trovio/SlotCounts.h"
#include "trovio/StampWatch.h"
#include <utility>

namespace Trovio {

class BasicData;
class BasicInSlot;
class BasicOutSlot;

namespace Hooks {
void downAndLock(const BasicInSlot& slot);
bool tryDown(const BasicInSlot& slot);
void drained(BasicInSlot& slot);
void unlockUnchanged(const BasicInSlot& slot);
void stored(BasicInSlot& slot, const BasicData& record);
void overwritten(BasicInSlot& slot);
void notStored(BasicInSlot& slot);
void putBack(const BasicInSlot& slot);
void setCapacity(BasicInSlot& slot, unsigned int capacity);
void taken(BasicInSlot& slot, const BasicData& record);
void cutShort(BasicInSlot& slot);
bool saysOnce(BasicInSlot& slot);
} // namespace Hooks

/// The receiving end, without its value type: waiting, interrupting and counting.
/// Threads: any thread, any operation.
class BasicInSlot : public Slot {
public:
    Direction getDirection() const override { return Direction::In; }

    /// True while no unread record is held.
    virtual bool empty() const = 0;
    /// Does nothing for null or for an out-slot of another value type.
    virtual void connect(BasicOutSlot* outSlot) = 0;
    virtual void disconnect(BasicOutSlot* outSlot) = 0;

    /// The first connection came, the last one went.
    virtual void startInSlot() { setActive(true); }
    virtual void stopInSlot() { setActive(false); }

    /// A record was stored. Runs on the pushing thread, after the data lock was released, under the out-slot's.
    virtual void newData();

    /// Releases one reader from its wait in pop(), or makes the next top() or pop() throw InterruptedException.
    /// A second interrupt before the first one was taken adds nothing.
    void interrupt();

    InSlotCounts getCounts() const OSTREL_EXCLUDES(_dataLock);
    InSlotActivity getActivity() const OSTREL_EXCLUDES(_dataLock);

    /// How many records it can hold: 1, or the length of its ring.
    unsigned int getCapacity() const { return _capacity; }

    /// One more record can be taken. Inlined always: the compiler finds it just too large for a ring's push().
    [[gnu::always_inline]] void up() const OSTREL_REQUIRES(_dataLock)
    {
        ++_upCount;
        _mayHoldRecord.set(true);
        putBack();
    }

    /// Blocks until a matching up() or an interrupt. May return once without either, after an interrupt that top()
    /// took: look for the flag and the record, and wait again when there is neither.
    void down() const OSTREL_EXCLUDES(_dataLock)
    {
        downAndLock();
        _dataLock.unlock();
    }

protected:
    explicit BasicInSlot(const std::string& name)
        : Slot(name, Direction::In, Ostrel::LockRank::InSlotListeners, Ostrel::LockRank::InSlotData)
    {
    }

    bool _interrupted OSTREL_GUARDED_BY(_dataLock) = false;

    // For the typed slots and their readers, by way of Hooks.

    /// down(), and keeps the data lock, under which the count stands anyway.
    void downAndLock() const OSTREL_ACQUIRE(_dataLock)
    {
        _dataLock.lock();
        _available.wait(_dataLock);
    }

    /// The record that down() was passed for is still there: its reader could not copy it.
    void putBack() const OSTREL_REQUIRES(_dataLock) { _wakesOwed += _available.post(); }

    /// Only while the slot is built.
    void setCapacity(unsigned int capacity) { _capacity = capacity; }

    /// Takes a token where one is left, and does not wait for it.
    bool tryDown() const OSTREL_REQUIRES(_dataLock) { return _available.tryWait(); }

    /// The last unread record was taken.
    void setDrained() OSTREL_REQUIRES(_dataLock) { _mayHoldRecord.set(false); }

    void countStored(const Time& stamp) OSTREL_REQUIRES(_dataLock)
    {
        ++_stored;
        _stamps.note(stamp);
    }
    void countOverwritten() OSTREL_REQUIRES(_dataLock) { ++_overwritten; }
    void countNotStored() OSTREL_REQUIRES(_dataLock) { ++_notStored; }
    void countTaken(const Time& stamp) OSTREL_REQUIRES(_dataLock)
    {
        ++_taken;
        _lastTaken = stamp;
        _overwrittenAtTake = _overwritten;
    }

    /// A frame left records to the next one: more came than one may take.
    void countCutShort() OSTREL_EXCLUDES(_dataLock);

    /// True the first time, for what its reader says once of the slot. The reader's thread.
    bool saysOnce() { return !std::exchange(_hasSaid, true); }

private:
    InSlotCounts countsLocked() const OSTREL_REQUIRES(_dataLock)
    {
        return {_stored, _overwritten, _taken, _upCount - _taken};
    }

    friend class Slot; // wakes the readers
    friend void Hooks::downAndLock(const BasicInSlot& slot);
    friend bool Hooks::tryDown(const BasicInSlot& slot);
    friend void Hooks::drained(BasicInSlot& slot);
    friend void Hooks::unlockUnchanged(const BasicInSlot& slot);
    friend void Hooks::stored(BasicInSlot& slot, const BasicData& record);
    friend void Hooks::overwritten(BasicInSlot& slot);
    friend void Hooks::notStored(BasicInSlot& slot);
    friend void Hooks::putBack(const BasicInSlot& slot);
    friend void Hooks::setCapacity(BasicInSlot& slot, unsigned int capacity);
    friend void Hooks::taken(BasicInSlot& slot, const BasicData& record);
    friend void Hooks::cutShort(BasicInSlot& slot);
    friend bool Hooks::saysOnce(BasicInSlot& slot);
    // As many tokens as unread records, and at times one for an interrupt.
    mutable Ostrel::Semaphore _available OSTREL_GUARDED_BY(_dataLock);
    unsigned int _capacity = 1;
    bool _hasSaid = false;
    mutable std::uint64_t _upCount OSTREL_GUARDED_BY(_dataLock) = 0; // records made available, not interrupts
    std::uint64_t _stored OSTREL_GUARDED_BY(_dataLock) = 0;
    std::uint64_t _overwritten OSTREL_GUARDED_BY(_dataLock) = 0;
    std::uint64_t _taken OSTREL_GUARDED_BY(_dataLock) = 0;
    Time _lastTaken OSTREL_GUARDED_BY(_dataLock);
    std::uint64_t _overwrittenAtTake OSTREL_GUARDED_BY(_dataLock) = 0;
    StampWatch _stamps OSTREL_GUARDED_BY(_dataLock);
    std::uint64_t _interrupts OSTREL_GUARDED_BY(_dataLock) = 0;
    std::uint64_t _takenAtInterrupt OSTREL_GUARDED_BY(_dataLock) = 0;
    std::uint64_t _notStored OSTREL_GUARDED_BY(_dataLock) = 0;
    std::uint64_t _cutShort OSTREL_GUARDED_BY(_dataLock) = 0;
};

} // namespace Trovio
