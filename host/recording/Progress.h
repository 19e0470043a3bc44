#pragma once

#include <chrono>
#include <cstdint>

namespace Host {

/// How far a long work is, on one line of the terminal behind standard error, which goes when the work ends. Nothing is
/// shown where there is no such terminal.
/// Threads: one.
class Progress {
public:
    /// `what` stands in front of the share that is done. Nothing is shown where it is not `wanted`.
    explicit Progress(const char* what, bool wanted = true);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// At most ten times a second something is written.
    void show(std::uint64_t done, std::uint64_t all);

private:
    using Clock = std::chrono::steady_clock;
    const char* const _what;
    const bool _isShown;
    Clock::time_point _next = Clock::now() + std::chrono::milliseconds(300); // what is quick needs none
    bool _stands = false;
};
} // namespace Host
