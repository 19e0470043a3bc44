#pragma once

#include <unistd.h>
#include <utility>

namespace Monitor {

/// Closes a file descriptor when it goes; -1 is none.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : _number(number) {}
    Descriptor(Descriptor&& from) noexcept : _number(from.release()) {}
    Descriptor& operator=(Descriptor&& from) noexcept
    {
        std::swap(_number, from._number);
        return *this;
    }
    ~Descriptor()
    {
        if (_number >= 0)
            close(_number);
    }

    int get() const { return _number; }
    /// Whoever takes it closes it.
    int release() { return std::exchange(_number, -1); }

private:
    int _number;
};
} // namespace Monitor
