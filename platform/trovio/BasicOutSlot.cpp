#include "trovio/BasicOutSlot.h"

namespace Trovio {

std::uint64_t BasicOutSlot::getWritten() const
{
    lock();
    const std::uint64_t written = _written;
    unlock();
    return written;
}

} // namespace Trovio
