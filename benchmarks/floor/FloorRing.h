#pragma once

#include "base/FutexLock.h"
#include "base/Semaphore.h"
#include <cstddef>
#include <vector>

namespace Bench {

/// A ring that drops its oldest message when it is full, written by hand; for FloorOut like FloorIn.
template <class Message>
class FloorRing {
public:
    using Value = Message;

    explicit FloorRing(std::size_t capacity) : _buffer(capacity) {}

    void push(const Message& message)
    {
        _lock.lock();
        std::uint32_t wakes = 0;
        if (_count < _buffer.size()) {
            ++_count;
            wakes = _available.post();
        } else {
            advance(_read);
        }
        _buffer[_write] = message;
        advance(_write);
        _lock.unlock();
        if (wakes != 0)
            _available.wake(wakes);
    }

    Message pop()
    {
        _lock.lock();
        _available.wait(_lock);
        const Message message = _buffer[_read];
        advance(_read);
        --_count;
        _lock.unlock();
        return message;
    }

private:
    void advance(std::size_t& place) { place = place + 1 == _buffer.size() ? 0 : place + 1; }

    Ostrel::FutexLock _lock;
    Ostrel::Semaphore _available;
    std::vector<Message> _buffer;
    std::size_t _read = 0;
    std::size_t _write = 0;
    std::size_t _count = 0;
};

} // namespace Bench
