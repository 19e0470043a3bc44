#include "trovio/BasicInSlot.h"

#include <utility>

namespace Trovio {

void BasicInSlot::newData()
{
    if (_listener)
        _listener->dataArrived(*this);
}

// With the class that owes. After the lock is free nothing but the address of what the readers sleep on is used: one
// that was quicker may have deleted the slot.
void Slot::unlockAndWake() const OSTREL_NO_THREAD_SAFETY_ANALYSIS
{
    const auto& inSlot = static_cast<const BasicInSlot&>(*this);
    const std::uint32_t wakes = std::exchange(_wakesOwed, 0U);
    _dataLock.unlock();
    inSlot._available.wake(wakes);
}

void BasicInSlot::interrupt()
{
    lock();
    ++_interrupts;
    _takenAtInterrupt = _taken;
    if (!_interrupted) {
        _interrupted = true;
        _wakesOwed += _available.post();
    }
    unlock();
}

void BasicInSlot::countCutShort()
{
    lock();
    ++_cutShort;
    unlock();
}

InSlotCounts BasicInSlot::getCounts() const
{
    lock();
    const InSlotCounts counts = countsLocked();
    unlock();
    return counts;
}

InSlotActivity BasicInSlot::getActivity() const
{
    lock();
    const InSlotActivity activity{countsLocked(), _stamps.getCounts(),
                                  _lastTaken,     _overwritten - _overwrittenAtTake,
                                  _interrupts,    _interrupts != 0 && _taken == _takenAtInterrupt,
                                  _notStored,     _cutShort};
    unlock();
    return activity;
}

} // namespace Trovio
