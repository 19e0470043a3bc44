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
    if (!_interrupted) {
        _interrupted = true;
        _wakeOwed = _available.post() || _wakeOwed;
    }
    unlock();
}

InSlotCounts BasicInSlot::getCounts() const
{
    lock();
    const InSlotCounts counts{_stored, _overwritten, _taken, _upCount - _taken};
    unlock();
    return counts;
}

} // namespace Trovio
