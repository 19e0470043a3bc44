#pragma once

#include "trovio/BufferedInSlot.h"
#include <typeinfo>

namespace Trovio {

/// pop() that does not wait: calls use(record) with the slot's next record, without the lock, where one waits that no
/// reader passed down() for. Looks and takes under one lock. False where none does, and for a slot that is neither an
/// InSlot<T> nor a BufferedInSlot<T> itself. Throws as pop() does.
/// Threads: any.
template <class T, class Use>
inline bool tryPop(BasicInSlot& slot, Use&& use)
{
    if (typeid(slot) == typeid(InSlot<T>))
        return Taking<T>::takeWithoutWaiting(static_cast<InSlot<T>&>(slot), use);
    return typeid(slot) == typeid(BufferedInSlot<T>) &&
           Taking<T>::takeWithoutWaiting(static_cast<BufferedInSlot<T>&>(slot), use);
}

} // namespace Trovio
