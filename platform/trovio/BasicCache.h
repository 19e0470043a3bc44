#pragma once

#include "base/Mutex.h"

namespace Trovio {

/// The lock of a pool; the pool itself knows its type. Not polymorphic.
class OSTREL_CAPABILITY("mutex") BasicCache {
public:
    BasicCache() = default;
    ~BasicCache() = default;
    BasicCache(const BasicCache&) = delete;
    BasicCache& operator=(const BasicCache&) = delete;

    void lock() OSTREL_ACQUIRE() OSTREL_NO_THREAD_SAFETY_ANALYSIS { _mutex.lock(); }
    bool tryLock() OSTREL_TRY_ACQUIRE(true) OSTREL_NO_THREAD_SAFETY_ANALYSIS { return _mutex.tryLock(); }
    void unlock() OSTREL_RELEASE() OSTREL_NO_THREAD_SAFETY_ANALYSIS { _mutex.unlock(); }

private:
    Ostrel::Mutex _mutex{Ostrel::LockRank::Pool};
};

} // namespace Trovio
