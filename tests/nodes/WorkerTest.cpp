#include "nodes/shared/Worker.h"
#include "tests/nodes/ManualClock.h"
#include <atomic>
#include <future>
#include <gtest/gtest.h>

namespace Trovio::Nodes {
namespace {

void unexpected(const std::string& problem)
{
    ADD_FAILURE() << problem;
}

/// Waits until a time that never comes, for a descriptor that is never ready, for both, or for neither.
class WorkerWait : public ::testing::TestWithParam<std::tuple<bool, bool>> {
protected:
    bool wait()
    {
        const auto [forTime, forDescriptor] = GetParam();
        return _worker.wait(forTime ? std::optional(5.0) : std::nullopt,
                            forDescriptor ? std::vector{_silent.get()} : std::vector<int>());
    }

    ManualClock _clock;
    FileDescriptor _silent{::eventfd(0, 0)};
    Worker _worker{_clock};
};

TEST_P(WorkerWait, StopEndsItAndTheWorkerCanStartAgain)
{
    for (int round = 0; round < 200; ++round) {
        int ended = 0;
        const auto body = [&] {
            while (wait()) {
            }
            ++ended;
        };
        _worker.start("test", body, unexpected);
        _worker.stop();
        EXPECT_EQ(ended, 1);
    }
}

// Handed over one by one, so that the worker waits, or is about to, at each wake.
TEST_P(WorkerWait, WakeIsNeverLost)
{
    constexpr int rounds = 2000;
    std::atomic<int> asked{0}, seen{0};
    _worker.start(
        "test",
        [&] {
            while (seen < rounds && (asked != seen || wait())) {
                seen = asked.load();
                seen.notify_one();
            }
        },
        unexpected);
    for (int i = 0; i < rounds; ++i) {
        asked = i + 1;
        _worker.wake();
        seen.wait(i);
    }
    _worker.stop(); // before the counts go
}

INSTANTIATE_TEST_SUITE_P(ForTimeAndDescriptor, WorkerWait, ::testing::Combine(::testing::Bool(), ::testing::Bool()));

TEST(Worker, WhatTheBodyThrowsIsReported)
{
    ManualClock clock;
    Worker worker(clock);
    std::promise<std::string> reported;
    worker.start(
        "test", [] { throw std::runtime_error("out of paper"); },
        [&](const std::string& problem) { reported.set_value(problem); });
    EXPECT_EQ(reported.get_future().get(), "out of paper");
}

} // namespace
} // namespace Trovio::Nodes
