#pragma once

#include "nodes/shared/FileDescriptor.h"
#include "tests/nodes/NodeFixture.h"
#include <fcntl.h>
#include <filesystem>
#include <stdexcept>
#include <stdlib.h>

namespace Trovio::Nodes {

/// A serial device under a path that stays the same: a test's link to the one end of a pair of terminals, whose other
/// end the test holds.
class Pty {
public:
    Pty()
    {
        std::string folder = (std::filesystem::temp_directory_path() / "serial-XXXXXX").string();
        if (!::mkdtemp(folder.data()))
            throw std::runtime_error("no folder for the link");
        _folder = folder;
    }
    ~Pty() { std::filesystem::remove_all(_folder); }
    Pty(const Pty&) = delete;
    Pty& operator=(const Pty&) = delete;

    std::string getPath() const { return (_folder / "board").string(); }
    std::string getFolder() const { return _folder.string(); }

    void plugIn()
    {
        _end = FileDescriptor(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC));
        if (::grantpt(_end.get()) != 0 || ::unlockpt(_end.get()) != 0)
            throw std::runtime_error("no pair of terminals");
        std::filesystem::create_symlink(::ptsname(_end.get()), getPath());
    }
    void unplug()
    {
        std::filesystem::remove(getPath());
        _end = FileDescriptor();
    }

    void send(const std::string& bytes)
    {
        for (std::string_view rest(bytes); !rest.empty();) {
            const auto count = ::write(_end.get(), rest.data(), rest.size());
            if (count < 0)
                throw std::runtime_error("the device cannot send");
            rest.remove_prefix(static_cast<std::size_t>(count));
        }
    }

    /// What the node wrote, up to the next '\n' and with it. Waits for it.
    std::string receiveLine()
    {
        std::string line;
        for (char byte = 0; byte != '\n'; line += byte)
            if (::read(_end.get(), &byte, 1) != 1)
                throw std::runtime_error("the device is gone after '" + line + "'");
        return line;
    }

private:
    std::filesystem::path _folder;
    FileDescriptor _end;
};

} // namespace Trovio::Nodes
