#include "trovio/BasicInSlot.h"

#include <utility>

namespace Trovio {

void BasicInSlot::newData()
{
    if (_listener)
        _listener->dataArrived(*this);
}

void BasicInSlot::unlockAndWake() const
{
    const std::uint32_t wakes = std::exchange(_wakesOwed, 0U);
    _dataLock.unlock();
    _available.wake(wakes);
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
                                  _interrupts,    _interrupts != 0 && _taken == _takenAtInterrupt};
    unlock();
    return activity;
}

} // namespace Trovio
