#include "trovio/BasicInSlot.h"

namespace Trovio {

void BasicInSlot::newData()
{
    if (_listener)
        _listener->dataArrived(*this);
}

void BasicInSlot::interrupt()
{
    lock();
    ++_interrupts;
    _takenAtInterrupt = _taken;
    if (!_interrupted) {
        _interrupted = true;
        _wakeOwed = _available.post() || _wakeOwed;
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
