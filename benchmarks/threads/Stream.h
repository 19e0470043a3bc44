#pragma once

#include "benchmarks/harness/Workload.h"
#include <concepts>
#include <latch>
#include <memory>
#include <thread>

namespace Bench {

/// A buffer of 1,024 records between two threads. Records are numbered by their time; take() sleeps for the next one.
/// Who drops records when the buffer is full drops the oldest, so that the last one always comes.
template <class S>
concept Stream = requires(S stream, double number)
{
    stream.push(number);
    {
        stream.take()
        } -> std::convertible_to<double>;
};

inline constexpr double streamLength = 2e6;
inline constexpr std::size_t streamCapacity = 1024;

/// As fast as the writer can; how long each record takes until the last one has been read, and how many were lost.
template <Stream S>
Sample runStream(S& stream)
{
    std::latch started(1), begin(1);
    std::thread writer([&] {
        started.count_down();
        begin.wait();
        for (double number = 1; number <= streamLength; ++number)
            stream.push(number);
    });
    started.wait(); // what starting a thread allocates is not the stream's
    const auto before = allocations();
    const auto start = Clock::now();
    begin.count_down();
    double taken = 1;
    while (stream.take() != streamLength)
        ++taken;
    const double time = nanosecondsSince(start);
    writer.join();
    const auto allocated = static_cast<double>(allocations() - before);
    return {{time / streamLength, streamLength - taken}, allocated / streamLength};
}

template <Stream S>
void addStream(Workload& workload, const char* name)
{
    workload.add(name, [stream = std::make_shared<S>()] { return runStream(*stream); });
}

} // namespace Bench
