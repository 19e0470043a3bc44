#pragma once

#include <chrono>
#include <cstdint>
#include <cstdlib>

/// How long a storm goes on: for OSTREL_STORM_SECONDS, and until OSTREL_STORM_OPERATIONS have changed something.
class StormLength {
public:
    /// The operations are shared out evenly among so many threads.
    explicit StormLength(int threads)
        : _end(std::chrono::steady_clock::now() + std::chrono::seconds(setting("OSTREL_STORM_SECONDS", 2))),
          _operations(setting("OSTREL_STORM_OPERATIONS", 100'000) / threads)
    {
    }

    bool isOver(int done) const { return done >= _operations && std::chrono::steady_clock::now() >= _end; }

    /// So many records are sent at least, of each kind of value: OSTREL_STORM_RECORDS.
    static std::uint64_t records() { return static_cast<std::uint64_t>(setting("OSTREL_STORM_RECORDS", 0)); }

private:
    static int setting(const char* name, int otherwise)
    {
        const char* const wanted = std::getenv(name);
        return wanted ? std::atoi(wanted) : otherwise;
    }

    const std::chrono::steady_clock::time_point _end;
    const int _operations;
};
