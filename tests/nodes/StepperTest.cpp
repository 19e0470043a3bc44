#include "trovio/Stepper.h"
#include "nodes/shared/Worker.h"
#include <future>
#include <gtest/gtest.h>
#include <sys/eventfd.h>

namespace Trovio::Nodes {
namespace {

constexpr double start = 1'700'000'000; // exact in a double, as are the quarters of seconds below

/// Workers that note when they run. The notes have no lock: that nobody is there at the same time is the stepper's
/// duty.
class StepperTest : public ::testing::Test {
protected:
    /// One that runs every so many seconds, and wakes the others whenever it does.
    void startTicking(Worker& worker, const std::string& name, double period, std::vector<Worker*> others)
    {
        worker.start(
            "ticks",
            [this, &worker, name, period, others] {
                for (double next = period; worker.wait(next); next += period) {
                    note(name);
                    for (Worker* const other : others)
                        other->wake();
                }
            },
            fail);
    }
    void startWaiting(Worker& worker, const std::string& name)
    {
        worker.start(
            "waits",
            [this, &worker, name] {
                while (worker.wait(std::nullopt))
                    note(name);
            },
            fail);
    }
    void note(const std::string& what)
    {
        _notes += what + "@" + std::to_string(static_cast<int>(Clock::system().now() * 100)) + " ";
    }
    static void fail(const std::string& problem) { ADD_FAILURE() << problem; }

    std::string _notes;
};

TEST_F(StepperTest, LetsThreadsRunOneByOneInTheirOrderWhenTheyAreDue)
{
    for (int round = 0; round < 50; ++round) {
        _notes.clear();
        Stepper stepper{Time(start)};
        Worker slow(Clock::system()), fed(Clock::system()), fast(Clock::system());
        startTicking(slow, "slow", 0.5, {&fed});
        startWaiting(fed, "fed");
        startTicking(fast, "fast", 0.25, {});
        EXPECT_EQ(_notes, "");
        stepper.advance(Time(start + 0.5));
        EXPECT_EQ(_notes, "fast@25 slow@50 fed@50 fast@50 ");
        EXPECT_EQ(Time::getCurrentTime(), Time(start + 0.5));
        fed.wake();
        stepper.advance(Time(start)); // time never goes back
        EXPECT_EQ(_notes, "fast@25 slow@50 fed@50 fast@50 fed@50 ");
        for (Worker* const worker : {&fed, &slow, &fast})
            worker->stop();
    }
    EXPECT_GT(Time::getCurrentTime().getSeconds(), start + 1);
}

TEST_F(StepperTest, TimePassesForWhoWaitsForThePast)
{
    Stepper stepper{Time(start)};
    Worker hasty(Clock::system());
    int runs = 0;
    hasty.start(
        "hasty",
        [&] {
            while (hasty.wait(0.0))
                ++runs;
        },
        fail);
    stepper.advance(Time(start + 0.001));
    EXPECT_GT(runs, 0);
    hasty.stop();
}

TEST_F(StepperTest, WatchesDescriptorsOnlyWhereItIsToldTo)
{
    for (const auto descriptors : {Stepper::Descriptors::Ignored, Stepper::Descriptors::Watched}) {
        Stepper stepper(Time(start), descriptors);
        const FileDescriptor ready(::eventfd(1, 0));
        Worker worker(Clock::system());
        int runs = 0;
        worker.start(
            "reads",
            [&] {
                while (worker.wait(std::nullopt, std::array{ready.get()}))
                    ++runs;
            },
            fail);
        stepper.advance(Time(start));
        stepper.advance(Time(start));
        EXPECT_EQ(runs, descriptors == Stepper::Descriptors::Watched ? 1 : 0);
        worker.stop();
    }
}

TEST_F(StepperTest, AThreadCanBeStoppedByOneThatHasNoBaton)
{
    Stepper stepper{Time(start)};
    Worker worker(Clock::system());
    startTicking(worker, "tick", 0.25, {});
    auto stopped = std::async(std::launch::async, [&] { worker.stop(); });
    while (stopped.wait_for(std::chrono::seconds(0)) != std::future_status::ready)
        stepper.advance(Time(start));
    EXPECT_EQ(_notes, "");
}

} // namespace
} // namespace Trovio::Nodes
