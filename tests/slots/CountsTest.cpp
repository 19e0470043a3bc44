#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <cmath>
#include <gtest/gtest.h>

using namespace Trovio;

namespace {

class Counts : public ::testing::Test {
protected:
    ~Counts() override
    {
        _out.disconnect(&_single);
        _out.disconnect(&_ring);
    }
    void push(int times)
    {
        for (int i = 0; i < times; ++i)
            _out.push(Data<long>(i, Time(i)));
    }

    OutSlot<long> _out{"out"};
    InSlot<long> _single{"in"};
    BufferedInSlot<long> _ring{"in", 4};
};

} // namespace

TEST_F(Counts, TellHowFarTheReaderIsBehind)
{
    _out.connect(&_ring);
    push(7); // stamps 0 to 6, of which 3 to 6 wait
    EXPECT_EQ(_ring.getActivity()._lostSinceTake, 3U);
    _ring.interrupt();
    EXPECT_TRUE(_ring.getActivity()._readerInterrupted);
    EXPECT_THROW(_ring.top(), InterruptedException);
    _ring.pop();
    const InSlotActivity activity = _ring.getActivity();
    EXPECT_EQ(activity._lostSinceTake, 0U);
    EXPECT_EQ(activity._lastTaken, Time(3));
    EXPECT_EQ(activity._stamps._last, Time(6));
    EXPECT_EQ(activity._interrupts, 1U);
    EXPECT_FALSE(activity._readerInterrupted) << "it has taken a record since";
}

TEST_F(Counts, TellStampsThatRunBackwardsOrLieInTheFuture)
{
    _out.connect(&_single);
    const double now = Time::getCurrentTime().getSeconds();
    for (const double offset : {-100.0, -50.0, -50.0, -70.0, 3600.0, 3601.0, -1.0, std::nan(""), -2.0, 1e300, 3600.0})
        _out.push(Data<long>(1, Time(now + offset)));
    for (const StampCounts& stamps : {_out.getActivity()._stamps, _single.getActivity()._stamps}) {
        EXPECT_EQ(stamps._backwards, 5U) << "one was no number, and nothing is compared with that";
        EXPECT_EQ(stamps._future, 4U);
        EXPECT_EQ(stamps._last, Time(now + 3600));
    }
}
