#pragma once

#include "monitor/server/net/Descriptor.h"

#include <string>

namespace Monitor {

/// The socket of this process in a folder, which only its user may open. Takes away what killed processes left there.
/// Ownership: the file goes with this, unless another one stands in its place.
class UnixDoor {
public:
    /// Throws std::runtime_error that says what is wrong and what helps.
    explicit UnixDoor(const std::string& folder);
    ~UnixDoor();
    UnixDoor(const UnixDoor&) = delete;
    UnixDoor& operator=(const UnixDoor&) = delete;

    const std::string& path() const { return _path; }
    /// Listens; whoever takes it closes it.
    Descriptor takeSocket() { return std::move(_socket); }

private:
    const std::string _path;
    Descriptor _socket;
    unsigned long _device = 0, _inode = 0;
};
} // namespace Monitor
