#pragma once

#include <cerrno>
#include <csignal>
#include <ctime>

namespace osg {

/// While it lives, a write of this thread into a pipe whose reader has gone fails with EPIPE, as it does in a program
/// that ignores SIGPIPE, and does not end the program. Keeps errno.
class PipeSignalGuard {
public:
    PipeSignalGuard() noexcept
    {
        sigset_t pending;
        sigpending(&pending);
        _isForOthers = sigismember(&pending, SIGPIPE) == 1;
        sigemptyset(&_pipe);
        sigaddset(&_pipe, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &_pipe, &_before);
    }
    ~PipeSignalGuard()
    {
        const int error = errno;
        const timespec atOnce = {};
        if (!_isForOthers)
            sigtimedwait(&_pipe, nullptr, &atOnce); // takes the one that a write has raised
        pthread_sigmask(SIG_SETMASK, &_before, nullptr);
        errno = error;
    }
    PipeSignalGuard(const PipeSignalGuard&) = delete;
    PipeSignalGuard& operator=(const PipeSignalGuard&) = delete;

private:
    sigset_t _pipe = {}, _before = {};
    bool _isForOthers = false; // one was pending before
};

} // namespace osg
