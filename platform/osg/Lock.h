#pragma once

#include "base/Mutex.h"

namespace osg {

/// The lock of the log. Not recursive: whoever holds it, a hook included, must not log.
/// Threads: any. It is the last lock in the order, so a message may be written under any other one.
class OSTREL_CAPABILITY("mutex") Lock {
public:
    Lock() = default;
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;

    void acquire() OSTREL_ACQUIRE() OSTREL_NO_THREAD_SAFETY_ANALYSIS { _mutex.lock(); }
    void release() OSTREL_RELEASE() OSTREL_NO_THREAD_SAFETY_ANALYSIS { _mutex.unlock(); }

private:
    Ostrel::Mutex _mutex{Ostrel::LockRank::Log};
};

} // namespace osg
