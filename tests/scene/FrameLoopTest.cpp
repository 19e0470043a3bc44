#include "scene/run/FrameLoop.h"

#include <gtest/gtest.h>
#include <vector>

using namespace Scenes;

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

TEST(FrameLoop, RunsAtItsRateUntilItsLimit)
{
    struct Row {
        const char* _name;
        LoopLimits _limits;
        double _stopAt;
        std::vector<double> _frameTakes; // seconds; frames after these take none
        std::vector<double> _starts;
        std::uint64_t _skipped;
    };
    for (const Row& row : {Row{"counts frames", {1e9, 3}, 1e9, {}, {0, 0.25, 0.5}, 0},
                           Row{"ends in time", {0.6, 100}, 1e9, {}, {0, 0.25, 0.5}, 0},
                           Row{"stops on request", {1e9, 100}, 0.5, {}, {0, 0.25}, 0},
                           Row{"slightly late", {1e9, 4}, 1e9, {0.25, 0.125}, {0, 0.25, 0.5, 0.75}, 0},
                           Row{"skips what it missed", {1e9, 3}, 1e9, {0.875}, {0, 0.875, 1}, 2}}) {
        SCOPED_TRACE(row._name);
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
        EXPECT_EQ(starts, row._starts);
        EXPECT_EQ(loop.frames(), starts.size());
        EXPECT_EQ(loop.skipped(), row._skipped);
    }
}
} // namespace
