#include "tests/support/AllocationCount.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <gtest/gtest.h>

using namespace Trovio;

TEST(SlotAllocations, PlainValuesNeverAllocate)
{
    OutSlot<Vec3<float>> out("out");
    InSlot<Vec3<float>> single("in");
    BufferedInSlot<Vec3<float>> ring("in", 8);
    out.connect(&single);
    out.connect(&ring);
    const AllocationCount count;
    for (int i = 0; i < 100; ++i) {
        out.push(Data(Vec3<float>(1, 2, 3), Time(i)));
        single.pop();
        ring.pop();
    }
    EXPECT_EQ(count.since(), 0U);
    out.disconnect(&single);
    out.disconnect(&ring);
}

TEST(SlotAllocations, SharedVectorsAreRecycledAfterTheFirstFrames)
{
    OutSlot<SharedVector<float>> out("out");
    BufferedInSlot<SharedVector<float>> ring("in", 4);
    out.connect(&ring);
    const auto frame = [&] {
        SharedVector<float> values;
        values.acquire();
        values->assign(1000, 1.0F);
        out.push(Data(values, Time(1)));
        ring.pop();
    };
    for (int i = 0; i < 8; ++i)
        frame();
    const AllocationCount count;
    for (int i = 0; i < 100; ++i)
        frame();
    EXPECT_EQ(count.since(), 0U);
    out.disconnect(&ring);
}
