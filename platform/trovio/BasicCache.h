#pragma once

#include "base/Mutex.h"
#include "trovio/BasicRefCtr.h"
#include <utility>

namespace Trovio {

/// The lock of a pool, and a place for objects that came back while there was no memory to list them as free: giving
/// back must not fail. The pool itself knows its type. Not polymorphic.
class OSTREL_CAPABILITY("mutex") BasicCache {
public:
    BasicCache() = default;
    ~BasicCache() = default;
    BasicCache(const BasicCache&) = delete;
    BasicCache& operator=(const BasicCache&) = delete;

    void lock() OSTREL_ACQUIRE() OSTREL_NO_THREAD_SAFETY_ANALYSIS { _mutex.lock(); }
    bool tryLock() OSTREL_TRY_ACQUIRE(true) OSTREL_NO_THREAD_SAFETY_ANALYSIS { return _mutex.tryLock(); }
    void unlock() OSTREL_RELEASE() OSTREL_NO_THREAD_SAFETY_ANALYSIS { _mutex.unlock(); }

protected:
    // The objects that wait form a ring, in the order in which they came back.
    bool anyWaits() const OSTREL_REQUIRES(this) { return _lastWaiting != nullptr; }
    BasicRefCtr* firstWaiting() const OSTREL_REQUIRES(this) { return _lastWaiting->_nextWaiting; }

    void addWaiting(BasicRefCtr& object) OSTREL_REQUIRES(this)
    {
        object._nextWaiting = _lastWaiting ? std::exchange(_lastWaiting->_nextWaiting, &object) : &object;
        _lastWaiting = &object;
    }

    void removeFirstWaiting() OSTREL_REQUIRES(this)
    {
        BasicRefCtr* const first = firstWaiting();
        if (first == _lastWaiting)
            _lastWaiting = nullptr;
        else
            _lastWaiting->_nextWaiting = first->_nextWaiting;
    }

private:
    Ostrel::Mutex _mutex{Ostrel::LockRank::Pool};
    BasicRefCtr* _lastWaiting OSTREL_GUARDED_BY(this) = nullptr;
};

} // namespace Trovio
