#include "Watchdog.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <execinfo.h>
#include <filesystem>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

// A sanitizer puts off signals that come from elsewhere until the thread's next system call, which a stalled thread
// never makes; signals that a thread causes itself are delivered at once, and this is one of them.
constexpr int stackSignal = SIGTRAP;
constexpr int deepest = 64;
std::atomic<int> printed{0};

void printStack(int)
{
    void* frames[deepest];
    backtrace_symbols_fd(frames, backtrace(frames, deepest), STDERR_FILENO);
    ++printed;
}

/// One thread after the other, so that the stacks do not mix.
void printStackOf(const std::string& thread)
{
    std::fprintf(stderr, "Stack of thread %s:\n", thread.c_str());
    const int before = printed;
    if (syscall(SYS_tgkill, getpid(), std::atoi(thread.c_str()), stackSignal) != 0)
        return;
    const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(1);
    while (printed == before && std::chrono::steady_clock::now() < patience)
        std::this_thread::yield();
}

} // namespace

Watchdog::Watchdog(std::chrono::seconds patience)
{
    void* frame = nullptr;
    backtrace(&frame, 1); // loads what it needs now: the handler must not
    std::signal(stackSignal, printStack);
    _thread = std::thread([this, patience] { watch(patience); });
}

Watchdog::~Watchdog()
{
    {
        const std::lock_guard guard(_mutex);
        _done = true;
    }
    _wake.notify_one();
    _thread.join();
    std::signal(stackSignal, SIG_DFL);
}

void Watchdog::watch(std::chrono::seconds patience)
{
    std::unique_lock guard(_mutex);
    for (unsigned long seen = _events - 1; seen != _events;) {
        seen = _events;
        if (_wake.wait_for(guard, patience, [this] { return _done; }))
            return;
    }
    std::fprintf(stderr, "FATAL: nothing happened for %lld s\n", static_cast<long long>(patience.count()));
    for (const auto& thread : std::filesystem::directory_iterator("/proc/self/task"))
        printStackOf(thread.path().filename());
    std::abort();
}
