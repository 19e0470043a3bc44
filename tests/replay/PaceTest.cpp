#include "host/replay/ReplayPace.h"

#include <gtest/gtest.h>

using namespace Host;

namespace {

/// Stands still until somebody waits.
class WaitedClock final : public Scenes::FrameClock {
public:
    double now() override { return _time; }
    double steady() override { return _time; }
    bool waitUntil(double time) override
    {
        _time = std::max(_time, time);
        return _time < 1000;
    }
    double _time = 100;
};

class Pace : public ::testing::Test {
protected:
    /// The clock when that position has come.
    double comes(double position)
    {
        EXPECT_TRUE(_pace.waitFor(position, [] {}));
        return _clock._time;
    }

    WaitedClock _clock;
    ReplayPace _pace{_clock, 1};
};

TEST_F(Pace, GoesAtTheSpeedThatIsSet)
{
    _pace.startAt(10);
    EXPECT_DOUBLE_EQ(comes(11), 101);
    _pace.faster();
    EXPECT_DOUBLE_EQ(comes(13), 102);
    _pace.slower();
    _pace.slower();
    EXPECT_DOUBLE_EQ(comes(14), 104);
}

TEST_F(Pace, StandsWhileItIsPausedAndGoesOnFromThere)
{
    _pace.startAt(0);
    comes(1);
    _pace.pause();
    int looks = 0;
    EXPECT_TRUE(_pace.waitFor(2, [&] {
        if (++looks == 21)
            _pace.goOn();
    }));
    EXPECT_NEAR(_clock._time, 103, 1e-9) << "20 looks of 50 ms, and the second that was left";
    EXPECT_EQ(_pace.text(3), "at 2.000 s of 3.000 s, speed 1");
}

TEST_F(Pace, StandsAtItsBeginningUntilItIsStarted)
{
    _clock._time = 105; // while a scene is being built
    _pace.pause();
    EXPECT_EQ(_pace.text(3), "paused at 0.000 s of 3.000 s, speed 1");
}

TEST_F(Pace, GoesToTheNextFrameAtOnceAndPausesThere)
{
    _pace.pause();
    _clock._time = 200;
    _pace.goToNextFrame();
    EXPECT_DOUBLE_EQ(comes(5), 200);
    EXPECT_DOUBLE_EQ(comes(6), 200);
    _pace.endFrame();
    EXPECT_EQ(_pace.text(9), "paused at 6.000 s of 9.000 s, speed 1");
    EXPECT_FALSE(_pace.waitFor(7, [] {})) << "until the clock says stop";
}

TEST_F(Pace, TellsHowLateWhatCameWas)
{
    _pace.startAt(0);
    for (int i = 1; i <= 100; ++i) {
        comes(i);
        _clock._time += i > 98 ? 0.5 : 0.001;
        comes(i + 0.0005);
        _pace.noteArrival();
    }
    EXPECT_NEAR(_pace.errors().quantile(0.5), 0.0005, 0.00005);
    EXPECT_NEAR(_pace.errors().quantile(0.99), 0.5, 0.05);
}
} // namespace
