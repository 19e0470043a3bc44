#include "host/show/Keyboard.h"

#include "host/show/Terminal.h"

#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <poll.h>
#include <sched.h>
#include <termios.h>
#include <unistd.h>

namespace Host {
namespace {

constexpr std::array fatal = {SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT, SIGSEGV};
constexpr std::array ofJobs = {SIGTTIN, SIGTTOU};

// Reached from signal handlers, which get no argument of ours.
std::atomic<bool> isChanged{false}, isKnown{false};
std::atomic<bool> isOver{false}, isTaking{false}; // the program ends; a thread is about to take the keys
termios before;                                   // once known, as the shell gave it to the program
std::array<struct sigaction, NSIG> replaced;

void install(int number, void (*handler)(int))
{
    struct sigaction action = {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    sigaction(number, &action, &replaced[static_cast<std::size_t>(number)]);
}

void putBack(int number)
{
    sigaction(number, &replaced[static_cast<std::size_t>(number)], nullptr);
}

// The signal is blocked until this returns, and then does what it would have done.
void onFatal(int number)
{
    Keyboard::restoreForGood();
    putBack(number);
    raise(number);
}

// Stops here, as if nobody had handled the signal, until the shell lets the program go on.
void onStop(int number)
{
    const int error = errno;
    Keyboard::restore();
    putBack(number);
    raise(number);
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, number);
    pthread_sigmask(SIG_UNBLOCK, &stop, nullptr);
    install(number, onStop);
    errno = error;
}

// False where they were taken already.
// Again where another program at this terminal has set it back.
bool takeKeysNow()
{
    termios keys{};
    if (tcgetattr(STDIN_FILENO, &keys) != 0 || (isChanged && (keys.c_lflag & ICANON) == 0))
        return false;
    if (!isKnown) {
        before = keys;
        before.c_lflag |= ICANON | ECHO; // where another one has taken the keys before, a shell still wants them
        isKnown = true;
    }
    keys.c_lflag &= ~static_cast<tcflag_t>(ICANON | ECHO);
    keys.c_cc[VMIN] = keys.c_cc[VTIME] = 0; // reading returns at once
    isChanged = true;
    tcsetattr(STDIN_FILENO, TCSANOW, &keys);
    isChanged = true; // also if a signal has just restored it
    return true;
}

bool takeKeys()
{
    isTaking = true;
    const bool areTaken = !isOver && takeKeysNow();
    isTaking = false;
    return areTaken;
}
} // namespace

Keyboard::Keyboard() : _isThere(isatty(STDIN_FILENO))
{
    if (!_isThere)
        return;
    for (const int number : fatal)
        install(number, onFatal);
    for (const int number : ofJobs)
        install(number, SIG_IGN); // else it would stop the program that has just gone to the background
    install(SIGTSTP, onStop);
}

Keyboard::~Keyboard()
{
    if (!_isThere)
        return;
    restore();
    for (const int number : fatal)
        putBack(number);
    for (const int number : ofJobs)
        putBack(number);
    putBack(SIGTSTP);
}

std::string Keyboard::read()
{
    _isBack = false;
    if (!_isThere || !isInFront(STDIN_FILENO))
        return {};
    _isBack = takeKeys();
    // Looked at first: another program may make the terminal wait for whole lines at any time.
    pollfd keys{STDIN_FILENO, POLLIN, 0};
    if (::poll(&keys, 1, 0) <= 0)
        return {};
    std::array<char, 256> bytes;
    const ssize_t count = ::read(STDIN_FILENO, bytes.data(), bytes.size());
    return {bytes.data(), count > 0 ? static_cast<std::size_t>(count) : 0};
}

void Keyboard::restore()
{
    if (isChanged.exchange(false) && isInFront(STDIN_FILENO))
        tcsetattr(STDIN_FILENO, TCSANOW, &before);
}

void Keyboard::restoreForGood()
{
    isOver = true;
    // Not for ever: in a signal handler it may be this thread that is about to take them.
    for (int i = 0; isTaking && i < 10'000; ++i)
        sched_yield();
    restore();
}
} // namespace Host
