#include "host/run/StopSignal.h"

#include "host/show/Keyboard.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <fcntl.h>
#include <poll.h>
#include <semaphore.h>
#include <system_error>
#include <unistd.h>

namespace Host {
namespace {

// Reached from the signal handler, which gets no argument of ours.
std::atomic<bool> stopRequested{false};
std::atomic<bool> isWatched{false};
std::atomic<int> secondNumber{0};
constexpr int asStop = -1, whoeverComes = -2;
std::atomic<int> hangUpTo{asStop};
std::atomic<bool> hangUpKept{false};
int wakePipe[2] = {-1, -1};
sem_t news;
static_assert(std::atomic<bool>::is_always_lock_free && std::atomic<int>::is_always_lock_free);

void deliverHangUp()
{
    constexpr std::uint64_t one = 1;
    if (const int to = hangUpTo; to >= 0 && hangUpKept.exchange(false)) [[maybe_unused]]
        const ssize_t ignored = write(to, &one, sizeof one);
}

void onSignal(int number)
{
    const int error = errno;
    if (number == SIGHUP && hangUpTo != asStop) {
        hangUpKept = true; // before the look at where it goes, which another thread may say just now
        deliverHangUp();
        errno = error;
        return;
    }
    // A terminal that closes hangs up twice: its shell, and then the kernel.
    if (stopRequested.exchange(true) && number != SIGHUP)
        if (secondNumber.exchange(number) != 0 || !isWatched) {
            Keyboard::restoreForGood();
            _exit(128 + number);
        }
    sem_post(&news);
    // The byte is never read: from now on every wait returns at once.
    [[maybe_unused]] const ssize_t ignored = write(wakePipe[1], "", 1);
    errno = error;
}

bool isIgnored(int number)
{
    struct sigaction action = {};
    sigaction(number, nullptr, &action);
    return action.sa_handler == SIG_IGN;
}

void install(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, nullptr);
}
} // namespace

StopSignal::StopSignal()
{
    if (pipe2(wakePipe, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "cannot make the pipe that signals wake");
    sem_init(&news, 0, 0);
    stopRequested = false;
    hangUpTo = asStop;
    hangUpKept = false;
    secondNumber = 0;
    install(SIGINT, onSignal);
    install(SIGTERM, onSignal);
    _hearsHangUp = !isIgnored(SIGHUP);
    if (_hearsHangUp)
        install(SIGHUP, onSignal);
    install(SIGPIPE, SIG_IGN);
}

StopSignal::~StopSignal()
{
    for (const int number : {SIGINT, SIGTERM, SIGPIPE})
        install(number, SIG_DFL);
    if (_hearsHangUp)
        install(SIGHUP, SIG_DFL);
    close(wakePipe[0]);
    close(wakePipe[1]);
    sem_destroy(&news);
}

void StopSignal::sendHangUpTo(int eventfd) const
{
    hangUpTo = eventfd;
    deliverHangUp();
}

void StopSignal::keepHangUp() const
{
    hangUpTo = whoeverComes;
}

bool StopSignal::keepsHangUp() const
{
    return hangUpTo == whoeverComes;
}

void StopSignal::tell() const
{
    sem_post(&news);
}

void StopSignal::waitForNews(double seconds) const
{
    timespec until = {};
    clock_gettime(CLOCK_MONOTONIC, &until);
    const auto nanoseconds = until.tv_nsec + static_cast<long>((seconds - std::floor(seconds)) * 1e9);
    until.tv_sec += static_cast<time_t>(seconds) + nanoseconds / 1'000'000'000;
    until.tv_nsec = nanoseconds % 1'000'000'000;
    sem_clockwait(&news, CLOCK_MONOTONIC, &until);
}

void StopSignal::setWatched(bool watched) const
{
    isWatched = watched;
}

int StopSignal::second() const
{
    return secondNumber;
}

bool StopSignal::requested() const
{
    return stopRequested;
}

void StopSignal::wait(double seconds) const
{
    constexpr double maxWait = 3600; // seconds; callers look at the clock and come again
    const double bounded = std::clamp(seconds, 0.0, maxWait);
    const double whole = std::floor(bounded);
    const timespec timeout = {static_cast<time_t>(whole), static_cast<long>((bounded - whole) * 1e9)};
    pollfd wake = {wakePipe[0], POLLIN, 0};
    ppoll(&wake, 1, &timeout, nullptr);
}
} // namespace Host
