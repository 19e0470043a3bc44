#pragma once

#include "base/Mutex.h"

namespace Trovio::Nodes {

/// Whether a topic of a domain is read in this program itself. The library calls such readers on the writing thread,
/// and they push the sample into slots: so it must not be written under the lock of a slot.
/// Threads: any. The lock is held while writeUnread() writes; who subscribes waits for that.
class LocalTopic {
public:
    /// Before a reader is made, and after it is gone.
    void addReader() OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        ++_readers;
    }
    void removeReader() OSTREL_EXCLUDES(_lock)
    {
        const Ostrel::LockGuard guard(_lock);
        --_readers;
    }

    /// Calls write, which must not throw, unless the topic is read here or somebody else is just doing the same; false
    /// then. Never waits for a lock.
    template <class Write>
    bool writeUnread(Write write) OSTREL_EXCLUDES(_lock)
    {
        if (!_lock.tryLock())
            return false;
        const bool isUnread = _readers == 0;
        if (isUnread)
            write();
        _lock.unlock();
        return isUnread;
    }

private:
    Ostrel::Mutex _lock; // unranked: with a slot's lock held, it is only tried
    unsigned _readers OSTREL_GUARDED_BY(_lock) = 0;
};

} // namespace Trovio::Nodes
