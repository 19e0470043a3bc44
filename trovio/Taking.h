#pragma once

#include "trovio/Data.h"
#include "trovio/Hooks.h"

namespace Trovio {

class BasicInSlot;
template <class T>
class InSlot;
template <class T>
class BufferedInSlot;

/// How records leave in-slots, with and without a ring: for readers who wait, and for a frame, which does not.
/// Threads: any.
template <class T>
class Taking {
private:
    friend class InSlot<T>;
    friend class BufferedInSlot<T>;
    template <class Value, class Use>
    friend bool tryPop(BasicInSlot& slot, Use&& use);

    static bool isEmpty(const InSlot<T>& slot) OSTREL_REQUIRES(slot._dataLock) { return slot._empty; }
    static bool isEmpty(const BufferedInSlot<T>& slot) OSTREL_REQUIRES(slot._dataLock) { return slot._count == 0; }

    /// pop() of both kinds.
    template <class SlotT>
    static Data<T> waitAndTake(SlotT& slot) OSTREL_EXCLUDES(slot._dataLock)
    {
        for (;;) {
            slot.waitAndLock();
            slot.throwIfInterrupted();
            if (!isEmpty(slot))
                return take(slot);
            // The token of an interrupt that top() has taken meanwhile.
            slot.unlock();
        }
    }

    /// tryPop() of both kinds.
    template <class SlotT, class Use>
    static bool takeWithoutWaiting(SlotT& slot, Use& use) OSTREL_EXCLUDES(slot._dataLock)
    {
        slot.lock();
        if (isEmpty(slot) || !Hooks::tryDown(slot)) {
            slot.unlockUnchanged();
            return false;
        }
        slot.throwIfInterrupted();
        use(take(slot));
        return true;
    }

    // Under the slot's lock, which they leave, with a token for the record.
    static Data<T> take(InSlot<T>& slot) OSTREL_RELEASE(slot._dataLock)
    {
        const Data<T> data = slot.handOut(slot._data, true);
        slot._empty = true;
        Hooks::drained(slot);
        Hooks::taken(slot, data);
        slot.unlock();
        return data;
    }
    static Data<T> take(BufferedInSlot<T>& slot) OSTREL_RELEASE(slot._dataLock)
    {
        const Data<T> data = slot.handOut(*slot._readPos, true);
        slot.advance(slot._readPos);
        if (--slot._count == 0)
            Hooks::drained(slot);
        Hooks::taken(slot, data);
        slot.unlock();
        return data;
    }
};

} // namespace Trovio
