#pragma once

#include "base/Mutex.h"
#include "trovio/BasicData.h"
#include "trovio/BasicInSlot.h"

// What the typed slots and those who drain them need of this framework beyond its documented interface. A build against
// another framework replaces this header. Of its operations these have to do what they say: wiringLock(),
// downAndLock(), tryDown(), unlockUnchanged(), putBack(), which is up() there, and isInSlot(). mayHoldRecord() may be
// true of every in-slot, getCapacity() any number and saysOnce() always true. The others may do nothing.
namespace Trovio::Hooks {

/// Held around the whole of every connect and disconnect in the process, so that the two sides of a pair never
/// disagree: each side alone changes under its own locks, one after the other.
Ostrel::Mutex& wiringLock();

class OSTREL_SCOPED_CAPABILITY WiringGuard {
public:
    WiringGuard() OSTREL_ACQUIRE(wiringLock()) { wiringLock().lock(); }
    ~WiringGuard() OSTREL_RELEASE() { wiringLock().unlock(); }
    WiringGuard(const WiringGuard&) = delete;
    WiringGuard& operator=(const WiringGuard&) = delete;
};

/// What slot.getDirection() says, without a virtual call.
inline bool isInSlot(const Slot& slot)
{
    return slot.isInSlot();
}

/// False where certainly no unread record waits, always for an out-slot; without a lock.
inline bool mayHoldRecord(const Slot& slot)
{
    return slot.mayHoldRecord();
}

/// slot.down() and then slot.lock(), in one step where that is cheaper.
inline void downAndLock(const BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.downAndLock();
}

/// Takes what down() would, but does not wait for it. Under slot.lock().
inline bool tryDown(const BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    return slot.tryDown();
}

/// The last unread record was taken.
inline void drained(BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.setDrained();
}

/// slot.unlock() for who has only looked: nothing was stored, so nobody has to be woken.
inline void unlockUnchanged(const BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot._dataLock.unlock();
}

inline void stored(BasicInSlot& slot, const BasicData& record) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.countStored(record.getTimeStamp());
}

inline void overwritten(BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.countOverwritten();
}

inline void notStored(BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.countNotStored();
}

/// What up() does, for a record that was counted before.
inline void putBack(const BasicInSlot& slot) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.putBack();
}

/// How many records the slot can hold.
inline unsigned int getCapacity(const BasicInSlot& slot)
{
    return slot.getCapacity();
}

inline void setCapacity(BasicInSlot& slot, unsigned int capacity)
{
    slot.setCapacity(capacity);
}

inline void taken(BasicInSlot& slot, const BasicData& record) OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    slot.countTaken(record.getTimeStamp());
}

/// A frame left records to the next one: more came than one may take.
inline void cutShort(BasicInSlot& slot)
{
    slot.countCutShort();
}

/// True the first time, for what its reader says once of the slot. The reader's thread.
inline bool saysOnce(BasicInSlot& slot)
{
    return slot.saysOnce();
}

} // namespace Trovio::Hooks
