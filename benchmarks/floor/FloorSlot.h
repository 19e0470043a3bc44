#pragma once

#include "base/Flag.h"
#include "base/FutexLock.h"
#include "base/Semaphore.h"
#include <vector>

namespace Bench {

// What the slots promise, written by hand and no more than that, as tight as it can be: one lock of four bytes on each
// side, the count for whoever waits inside it, one copy into each side, and a flag that says without the lock whether
// there is anything to take. Lock, count and flag are the library's own: what is compared stands above them.

template <class Message>
class FloorIn {
public:
    using Value = Message;

    void push(const Message& message)
    {
        _lock.lock();
        std::uint32_t wakes = 0;
        if (!_mayHold.isSet()) {
            _mayHold.set(true);
            wakes = _available.post();
        }
        _message = message;
        _lock.unlock();
        if (wakes != 0)
            _available.wake(wakes);
    }

    Message pop()
    {
        _lock.lock();
        _available.wait(_lock);
        return take();
    }

    /// Looks without the lock, and then looks and takes under one.
    template <class Use>
    bool poll(Use use)
    {
        if (!_mayHold.isSet())
            return false;
        _lock.lock();
        if (!_available.tryWait()) {
            _lock.unlock();
            return false;
        }
        use(take());
        return true;
    }

private:
    Message take()
    {
        const Message message = _message;
        _mayHold.set(false);
        _lock.unlock();
        return message;
    }

    Ostrel::FutexLock _lock;
    Ostrel::Flag _mayHold;
    Ostrel::Semaphore _available;
    Message _message{};
};

template <class In>
class FloorOut {
public:
    using Message = typename In::Value;

    void connect(In& in) { _ins.push_back(&in); }

    void push(const Message& message)
    {
        _lock.lock();
        _message = message;
        _hasValue = true;
        for (In* const in : _ins)
            in->push(message);
        _lock.unlock();
    }

private:
    Ostrel::FutexLock _lock;
    std::vector<In*> _ins;
    Message _message{};
    bool _hasValue = false;
};

} // namespace Bench
