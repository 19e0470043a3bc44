#include "host/run/ReloadThread.h"

#include "base/QuietThread.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace Host {
namespace {

// One save is several events: an editor moves the old file away, writes a new one and renames it.
constexpr int quietTime = 100, lookInterval = 500; // milliseconds; the latter while a folder is gone
constexpr std::chrono::seconds maxUnrest(2);
} // namespace

bool hasControllingTerminal()
{
    const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal >= 0)
        close(terminal);
    return terminal >= 0;
}

ReloadThread::ReloadThread(const StopSignal& stop, const Reasons& reasons, std::function<void()> reload)
    : _stop(stop), _reload(std::move(reload)), _paths(reasons._files)
{
    if (!_paths.empty())
        _files.emplace(_paths);
    _wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    if (_wakeUp < 0)
        throw std::system_error(errno, std::generic_category(), "no eventfd for what has scenes read anew");
    try {
        _thread = Ostrel::quietThread("reload", [this] { run(); });
    } catch (...) {
        close(_wakeUp);
        throw;
    }
    if (reasons._hangUp)
        _stop.sendHangUpTo(_wakeUp);
}

ReloadThread::~ReloadThread()
{
    _stop.sendHangUpTo(-1);
    _isOver = true;
    eventfd_write(_wakeUp, 1);
    _thread.join();
    close(_wakeUp);
}

void ReloadThread::run()
{
    while (waitForReason()) {
        watchAnew();
        _reload();
    }
}

// A folder may have been renamed, and links may lead elsewhere. Before the files are read, so that no save is missed.
bool ReloadThread::watchAnew()
{
    _files.reset();
    try {
        if (!_paths.empty())
            _files.emplace(_paths);
    } catch (const std::system_error&) { // the reload says that the file is not there
        return false;
    }
    return true;
}

bool ReloadThread::takeWakeUp()
{
    eventfd_t count = 0;
    return eventfd_read(_wakeUp, &count) == 0;
}

// False at the end.
bool ReloadThread::waitForReason()
{
    for (;;) {
        std::array<pollfd, 2> news{{{_wakeUp, POLLIN, 0}, {_files ? _files->descriptor() : -1, POLLIN, 0}}};
        const bool isLost = !_files && !_paths.empty();
        poll(news.data(), news.size(), isLost ? lookInterval : -1);
        const bool isWoken = takeWakeUp();
        if (_isOver)
            return false;
        if (_files && _files->takeEvents()) {
            waitForQuiet();
            return !_isOver;
        }
        if (isWoken || (isLost && watchAnew()))
            return true;
    }
}

void ReloadThread::waitForQuiet()
{
    const auto end = std::chrono::steady_clock::now() + maxUnrest;
    while (!_isOver && std::chrono::steady_clock::now() < end) {
        std::array<pollfd, 2> news{{{_files->descriptor(), POLLIN, 0}, {_wakeUp, POLLIN, 0}}};
        if (poll(news.data(), news.size(), quietTime) == 0)
            return;
        _files->takeEvents();
        takeWakeUp();
    }
}
} // namespace Host
