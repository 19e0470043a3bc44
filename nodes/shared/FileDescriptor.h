#pragma once

#include <unistd.h>
#include <utility>

namespace Trovio::Nodes {

/// Owns an open file descriptor; closes it when it goes.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number) : _number(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : _number(std::exchange(other._number, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept
    {
        std::swap(_number, other._number);
        return *this;
    }
    ~FileDescriptor()
    {
        if (isOpen())
            ::close(_number);
    }

    bool isOpen() const { return _number >= 0; }
    int get() const { return _number; }

private:
    int _number = -1;
};

} // namespace Trovio::Nodes
