#include "host/run/ReloadThread.h"

#include "base/QuietThread.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace Host {
namespace {

// One save is several events: an editor moves the old file away, writes a new one and renames it.
constexpr int quietTime = 100, maxQuietRounds = 20; // milliseconds, so that two seconds are the most
} // namespace

bool hasControllingTerminal()
{
    const int terminal = open("/dev/tty", O_RDWR | O_NOCTTY | O_CLOEXEC);
    if (terminal >= 0)
        close(terminal);
    return terminal >= 0;
}

ReloadThread::ReloadThread(const StopSignal& stop, const Reasons& reasons, std::function<void()> reload)
    : _stop(stop), _reload(std::move(reload))
{
    if (!reasons._files.empty())
        _files.emplace(reasons._files);
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
    while (waitForReason())
        _reload();
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
        poll(news.data(), news.size(), -1);
        const bool isWoken = takeWakeUp();
        if (_isOver)
            return false;
        if (_files && _files->takeEvents()) {
            waitForQuiet();
            return !_isOver;
        }
        if (isWoken)
            return true;
    }
}

void ReloadThread::waitForQuiet()
{
    for (int round = 0; round < maxQuietRounds && !_isOver; ++round) {
        std::array<pollfd, 2> news{{{_files->descriptor(), POLLIN, 0}, {_wakeUp, POLLIN, 0}}};
        if (poll(news.data(), news.size(), quietTime) == 0)
            return;
        _files->takeEvents();
    }
}
} // namespace Host
