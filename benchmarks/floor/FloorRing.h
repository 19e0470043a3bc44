#pragma once

#include <cstddef>
#include <mutex>
#include <semaphore.h>
#include <vector>

namespace Bench {

/// A ring that drops its oldest message when it is full, written by hand; for FloorOut like FloorIn.
template <class Message>
class FloorRing {
public:
    using Value = Message;

    explicit FloorRing(std::size_t capacity) : _buffer(capacity) { sem_init(&_available, 0, 0); }
    FloorRing(const FloorRing&) = delete;
    FloorRing& operator=(const FloorRing&) = delete;
    ~FloorRing() { sem_destroy(&_available); }

    void push(const Message& message)
    {
        const std::lock_guard guard(_lock);
        if (_count < _buffer.size()) {
            ++_count;
            sem_post(&_available);
        } else {
            advance(_read);
        }
        _buffer[_write] = message;
        advance(_write);
    }

    Message pop()
    {
        sem_wait(&_available);
        const std::lock_guard guard(_lock);
        const std::size_t place = _read;
        advance(_read);
        --_count;
        return _buffer[place];
    }

private:
    void advance(std::size_t& place) { place = place + 1 == _buffer.size() ? 0 : place + 1; }

    std::mutex _lock;
    sem_t _available;
    std::vector<Message> _buffer;
    std::size_t _read = 0;
    std::size_t _write = 0;
    std::size_t _count = 0;
};

} // namespace Bench
