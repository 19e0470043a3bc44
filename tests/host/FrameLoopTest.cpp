#include "host/FrameLoop.h"

#include <gtest/gtest.h>
#include <vector>

using namespace Host;

namespace {

/// Time moves only when somebody waits or a frame says how long it took.
class HandClock final : public FrameClock {
public:
    double now() override { return 1000 + _time; }
    double steady() override { return 50 + _time; }
    bool waitUntil(double time) override
    {
        _time = std::max(_time, time - 50);
        return _time < _stopAt;
    }

    double _time = 0;
    double _stopAt = 1e9;
};

struct LoopRow {
    const char* _name;
    LoopLimits _limits;
    double _stopAt;
    std::vector<double> _frameTakes; // seconds; frames after these take none
    std::vector<double> _expectedStarts;
    std::uint64_t _expectedSkipped;
};
class FrameLoopRuns : public ::testing::TestWithParam<LoopRow> {};

TEST_P(FrameLoopRuns, AtTheRate)
{
    const LoopRow& row = GetParam();
    HandClock clock;
    clock._stopAt = row._stopAt;
    FrameLoop loop(clock, 4, row._limits);
    std::vector<double> starts;
    loop.run([&](double now) {
        starts.push_back(now - 1000);
        if (starts.size() <= row._frameTakes.size())
            clock._time += row._frameTakes[starts.size() - 1];
        return true;
    });
    EXPECT_EQ(starts, row._expectedStarts);
    EXPECT_EQ(loop.frames(), starts.size());
    EXPECT_EQ(loop.skipped(), row._expectedSkipped);
}
INSTANTIATE_TEST_SUITE_P(Loop, FrameLoopRuns,
                         ::testing::Values(LoopRow{"CountsFrames", {1e9, 3}, 1e9, {}, {0, 0.25, 0.5}, 0},
                                           LoopRow{"EndsInTime", {0.6, 100}, 1e9, {}, {0, 0.25, 0.5}, 0},
                                           LoopRow{"StopsOnRequest", {1e9, 100}, 0.5, {}, {0, 0.25}, 0},
                                           LoopRow{
                                               "SlightlyLate", {1e9, 4}, 1e9, {0.25, 0.125}, {0, 0.25, 0.5, 0.75}, 0},
                                           LoopRow{"SkipsMissed", {1e9, 3}, 1e9, {0.875}, {0, 0.875, 1}, 2}),
                         [](const auto& row) { return std::string(row.param._name); });

TEST(FrameLoopRuns, StopsWhenAFrameSaysSo)
{
    HandClock clock;
    FrameLoop loop(clock, 4, {1e9, 100});
    loop.run([](double) { return false; });
    EXPECT_EQ(loop.frames(), 1u);
}
} // namespace
