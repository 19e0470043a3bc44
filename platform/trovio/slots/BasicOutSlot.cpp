#include "trovio/BasicOutSlot.h"

namespace Trovio {

std::uint64_t BasicOutSlot::getWritten() const
{
    lock();
    const std::uint64_t written = _written;
    unlock();
    return written;
}

OutSlotActivity BasicOutSlot::getActivity() const
{
    lock();
    const OutSlotActivity activity{_written, _stamps.getCounts()};
    unlock();
    return activity;
}

} // namespace Trovio
