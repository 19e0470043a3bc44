#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <gtest/gtest.h>

using namespace Trovio;

namespace {

void push(OutSlot<long>& out, int times)
{
    for (int i = 0; i < times; ++i)
        out.push(Data<long>(i, Time(i)));
}

} // namespace

TEST(Counts, TellWhatBecameOfEveryRecord)
{
    OutSlot<long> out("out");
    InSlot<long> single("in");
    BufferedInSlot<long> ring("in", 4);
    push(out, 1);
    out.connect(&single); // delivers the last record
    out.connect(&ring);
    push(out, 9);
    EXPECT_EQ(out.getWritten(), 10U);
    EXPECT_EQ(single.getCounts(), (InSlotCounts{10, 9, 0, 1}));
    EXPECT_EQ(ring.getCounts(), (InSlotCounts{10, 6, 0, 4}));

    single.pop();
    ring.pop();
    ring.pop();
    EXPECT_EQ(single.getCounts(), (InSlotCounts{10, 9, 1, 0}));
    EXPECT_EQ(ring.getCounts(), (InSlotCounts{10, 6, 2, 2}));

    ring.interrupt();
    EXPECT_TRUE(ring.getActivity()._readerInterrupted);
    EXPECT_THROW(ring.pop(), InterruptedException);
    EXPECT_EQ(ring.getCounts(), (InSlotCounts{10, 6, 2, 2})) << "an interrupt is no record";
    out.disconnect(&single);
    out.disconnect(&ring);
}

TEST(Counts, TellHowFarTheReaderIsBehind)
{
    OutSlot<long> out("out");
    BufferedInSlot<long> in("in", 2);
    out.connect(&in);
    push(out, 5); // stamps 0 to 4, of which 3 and 4 wait
    EXPECT_EQ(in.getActivity()._lostSinceTake, 3U);
    in.interrupt();
    EXPECT_THROW(in.top(), InterruptedException);
    in.pop();
    const InSlotActivity activity = in.getActivity();
    EXPECT_EQ(activity._lostSinceTake, 0U);
    EXPECT_EQ(activity._lastTaken, Time(3));
    EXPECT_EQ(activity._stamps._last, Time(4));
    EXPECT_EQ(activity._interrupts, 1U);
    EXPECT_FALSE(activity._readerInterrupted) << "it has taken a record since";
    out.disconnect(&in);
}

TEST(Counts, TellStampsThatRunBackwardsOrLieInTheFuture)
{
    OutSlot<long> out("out");
    InSlot<long> in("in");
    out.connect(&in);
    const double now = Time::getCurrentTime().getSeconds();
    const double offsets[] = {-100, -50, -50, -70, 3600, 3601, -1, 3600};
    for (const double offset : offsets)
        out.push(Data<long>(1, Time(now + offset)));
    for (const StampCounts& stamps : {out.getActivity()._stamps, in.getActivity()._stamps}) {
        EXPECT_EQ(stamps._backwards, 2U);
        EXPECT_EQ(stamps._future, 3U);
        EXPECT_EQ(stamps._last, Time(now + 3600));
    }
    out.disconnect(&in);
}
