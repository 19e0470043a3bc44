#include "host/recording/Progress.h"

#include "host/show/Terminal.h"

#include <cstdio>
#include <unistd.h>

namespace Host {

Progress::Progress(const char* what, bool wanted) : _what(what), _isShown(wanted && hasCursor(STDERR_FILENO)) {}

Progress::~Progress()
{
    if (_stands)
        std::fputs("\r\x1b[K", stderr);
}

void Progress::show(std::uint64_t done, std::uint64_t all)
{
    const auto now = Clock::now();
    if (!_isShown || now < _next || !isInFront(STDERR_FILENO))
        return;
    _next = now + std::chrono::milliseconds(100);
    _stands = true;
    constexpr double mebi = 1024.0 * 1024;
    std::fprintf(stderr, "\r\x1b[K%s: %3.0f %% of %.1f MiB", _what,
                 all == 0 ? 100.0 : 100.0 * static_cast<double>(done) / static_cast<double>(all),
                 static_cast<double>(all) / mebi);
}
} // namespace Host
