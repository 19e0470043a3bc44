#include "monitor/server/doors/UnixDoor.h"

#include "explain/text/Escape.h"
#include "monitor/server/doors/SocketFolder.h"

#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>

namespace Monitor {

using Explain::inQuotes;

namespace {

constexpr int waiting = 64; // clients that have not been taken in yet

[[noreturn]] void fail(const std::string& path, const std::string& what)
{
    throw std::runtime_error("the socket " + inQuotes(path) + " " + what);
}

sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        fail(path, "has a path of " + std::to_string(path.size()) + " bytes, and the system takes up to " +
                       std::to_string(sizeof address.sun_path - 1) + "; set XDG_RUNTIME_DIR to a shorter folder");
    path.copy(address.sun_path, path.size());
    return address;
}

Descriptor newSocket()
{
    return Descriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
}

// Nobody listens: whoever did was killed.
bool isLeftOver(const std::string& path)
{
    const sockaddr_un address = addressOf(path);
    const Descriptor probe = newSocket();
    return connect(probe.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 &&
           errno == ECONNREFUSED;
}

// A process of another PID namespace may share the folder: it is not seen, but its socket answers.
void clearLeftOvers(const std::string& folder)
{
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(folder, none)) {
        const std::string name = entry.path().filename().string();
        pid_t process = 0;
        const auto end = std::from_chars(name.data(), name.data() + name.size(), process).ptr;
        if (process > 0 && std::string_view(end) == ".sock" && kill(process, 0) != 0 && errno == ESRCH &&
            isLeftOver(entry.path()))
            unlink(entry.path().c_str());
    }
}

// Under another name until it listens, so that nobody takes it for one that was left over.
Descriptor listenAt(const std::string& path)
{
    const std::string young = path.substr(0, path.rfind('.')) + ".new";
    const sockaddr_un address = addressOf(young);
    Descriptor listening = newSocket();
    unlink(young.c_str());
    if (listening.get() < 0 ||
        bind(listening.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        chmod(young.c_str(), 0600) != 0 || listen(listening.get(), waiting) != 0 ||
        rename(young.c_str(), path.c_str()) != 0) {
        const int error = errno;
        unlink(young.c_str());
        fail(path, std::string("cannot be made: ") + std::strerror(error));
    }
    return listening;
}
} // namespace

UnixDoor::UnixDoor(const std::string& folder) : _path(folder + "/" + std::to_string(getpid()) + ".sock")
{
    if (const std::string wrong = makeSocketFolder(folder); !wrong.empty())
        fail(_path, "cannot be made: " + wrong);
    clearLeftOvers(folder);
    struct stat found {};
    if (lstat(_path.c_str(), &found) == 0 && !isLeftOver(_path))
        fail(_path, "is another server's, which answers there; one program has one server");
    _socket = listenAt(_path);
    if (lstat(_path.c_str(), &found) == 0) {
        _device = found.st_dev;
        _inode = found.st_ino;
    }
}

UnixDoor::~UnixDoor()
{
    struct stat found {};
    if (lstat(_path.c_str(), &found) == 0 && found.st_dev == _device && found.st_ino == _inode)
        unlink(_path.c_str());
}
} // namespace Monitor
