#pragma once

#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <thread>

/// A number above 0 that the environment may set, for the same test at another length. Throws for anything else, which
/// would make the test an empty one.
inline long fromEnvironment(const char* name, long otherwise)
{
    const char* const wanted = std::getenv(name);
    if (!wanted)
        return otherwise;
    char* end = nullptr;
    const long number = std::strtol(wanted, &end, 10);
    if (number <= 0 || *end != '\0')
        throw std::invalid_argument(std::string(name) + "=" + wanted + " is no number above 0");
    return number;
}

/// Keeps a producer to a steady rate; without one it never waits.
class Pace {
public:
    /// Events a second; 0 as fast as it goes.
    explicit Pace(long perSecond) : _perSecond(perSecond) {}

    void next()
    {
        if (_perSecond > 0 && ++_events % burst == 0)
            std::this_thread::sleep_until(_start + std::chrono::nanoseconds(_events * 1'000'000'000 / _perSecond));
    }

private:
    static constexpr long burst = 20; // events between two waits

    const long _perSecond;
    const std::chrono::steady_clock::time_point _start = std::chrono::steady_clock::now();
    long _events = 0;
};
