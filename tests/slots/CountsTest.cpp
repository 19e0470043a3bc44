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
    EXPECT_THROW(ring.pop(), InterruptedException);
    EXPECT_EQ(ring.getCounts(), (InSlotCounts{10, 6, 2, 2})) << "an interrupt is no record";
    out.disconnect(&single);
    out.disconnect(&ring);
}
