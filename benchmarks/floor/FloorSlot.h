#pragma once

#include <mutex>
#include <semaphore.h>
#include <vector>

namespace Bench {

// What the slots promise, written by hand and no more than that: a plain mutex on each side, a POSIX semaphore for
// whoever waits, and one copy into each side.

template <class Message>
class FloorIn {
public:
    using Value = Message;

    FloorIn() { sem_init(&_available, 0, 0); }
    FloorIn(const FloorIn&) = delete;
    FloorIn& operator=(const FloorIn&) = delete;
    ~FloorIn() { sem_destroy(&_available); }

    void push(const Message& message)
    {
        const std::lock_guard guard(_lock);
        if (_empty) {
            _empty = false;
            sem_post(&_available);
        }
        _message = message;
    }

    Message pop()
    {
        sem_wait(&_available);
        const std::lock_guard guard(_lock);
        _empty = true;
        return _message;
    }

    bool empty() const
    {
        const std::lock_guard guard(_lock);
        return _empty;
    }

private:
    mutable std::mutex _lock;
    sem_t _available;
    Message _message{};
    bool _empty = true;
};

template <class In>
class FloorOut {
public:
    using Message = typename In::Value;

    void connect(In& in) { _ins.push_back(&in); }

    void push(const Message& message)
    {
        const std::lock_guard guard(_lock);
        _message = message;
        _hasValue = true;
        for (In* const in : _ins)
            in->push(message);
    }

private:
    std::mutex _lock;
    std::vector<In*> _ins;
    Message _message{};
    bool _hasValue = false;
};

} // namespace Bench
