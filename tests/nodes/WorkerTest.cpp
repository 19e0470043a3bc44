#include "nodes/shared/Worker.h"
#include "nodes/shared/Report.h"
#include "tests/nodes/ManualClock.h"
#include <future>
#include <gtest/gtest.h>

namespace Trovio::Nodes {
namespace {

void unexpected(const std::string& problem)
{
    ADD_FAILURE() << problem;
}

struct Wait {
    const char* _name;
    std::optional<double> _until;
    bool _onDescriptor;
};
class WorkerWait : public ::testing::TestWithParam<Wait> {
protected:
    std::vector<int> descriptors() const
    {
        return GetParam()._onDescriptor ? std::vector{_silent.get()} : std::vector<int>();
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
            while (_worker.wait(GetParam()._until, descriptors())) {
            }
            ++ended;
        };
        _worker.start("test", body, unexpected);
        _worker.stop();
        EXPECT_EQ(ended, 1);
    }
}

TEST_P(WorkerWait, WakeIsNeverLost)
{
    constexpr int rounds = 2000;
    std::atomic<int> asked{0};
    std::promise<void> allSeen;
    _worker.start(
        "test",
        [&] {
            while (asked < rounds && _worker.wait(GetParam()._until, descriptors())) {
            }
            allSeen.set_value();
        },
        unexpected);
    for (int i = 0; i < rounds; ++i) {
        ++asked;
        _worker.wake();
    }
    allSeen.get_future().wait();
}

INSTANTIATE_TEST_SUITE_P(From, WorkerWait,
                         ::testing::Values(Wait{"Anything", {}, false}, Wait{"ATime", 5.0, false},
                                           Wait{"ADescriptor", {}, true}, Wait{"TimeAndDescriptor", 5.0, true}),
                         [](const auto& row) { return std::string(row.param._name); });

TEST(Worker, WaitEndsWhenTheClockReachesTheTime)
{
    ManualClock clock;
    Worker worker(clock);
    std::promise<double> woken;
    worker.start(
        "test",
        [&] {
            while (worker.wait(2.0) && clock.now() < 2.0) {
            }
            woken.set_value(clock.now());
        },
        unexpected);
    clock.advance(1.5);
    clock.advance(0.5);
    EXPECT_EQ(woken.get_future().get(), 2.0);
}

TEST(Worker, WaitEndsWhenADescriptorIsReady)
{
    Worker worker(Clock::system());
    const FileDescriptor event(::eventfd(0, 0));
    std::promise<bool> woken;
    worker.start(
        "test", [&] { woken.set_value(worker.wait(std::nullopt, std::array{event.get()})); }, unexpected);
    ::eventfd_write(event.get(), 1);
    EXPECT_TRUE(woken.get_future().get());
}

TEST(Worker, SystemAlarmGoesOffForPastAndFutureTimes)
{
    Worker worker(Clock::system());
    std::promise<void> done;
    worker.start(
        "test",
        [&] {
            const double soon = Clock::system().now() + 0.01;
            worker.wait(-1.0);
            while (Clock::system().now() < soon)
                worker.wait(soon);
            done.set_value();
        },
        unexpected);
    done.get_future().wait();
}

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

TEST(Seldom, CountsWhatItHeldBack)
{
    ManualClock clock;
    Seldom seldom(clock, 1.0);
    EXPECT_EQ(seldom.admit(), 0U);
    clock.advance(0.5);
    EXPECT_EQ(seldom.admit(), std::nullopt);
    EXPECT_EQ(seldom.admit(), std::nullopt);
    clock.advance(0.5);
    EXPECT_EQ(seldom.admit(), 2U);
}

} // namespace
} // namespace Trovio::Nodes
