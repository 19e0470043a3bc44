#include "trovio/InSlot.h"

#include <gtest/gtest.h>

using namespace Trovio;

TEST(InSlot, KeepsTheNewestAndKnowsWhetherItWasRead)
{
    InSlot<float> slot("in");
    EXPECT_TRUE(slot.empty());
    EXPECT_EQ(slot.top().getTimeStamp(), Time(0));
    EXPECT_EQ(slot.top().getValue(), 0.0F);

    for (const float value : {1.0F, 2.0F, 3.0F})
        slot.push(Data<float>(value, Time(10.0 + value)));
    EXPECT_FALSE(slot.empty());
    EXPECT_EQ(slot.top().getValue(), 3.0F);
    EXPECT_FALSE(slot.empty()) << "top() must not take the value";

    const Data<float> taken = slot.pop();
    EXPECT_EQ(taken.getValue(), 3.0F);
    EXPECT_EQ(taken.getTimeStamp(), Time(13));
    EXPECT_TRUE(slot.empty());
    EXPECT_EQ(slot.top().getValue(), 3.0F) << "a value that was taken can still be looked at";
}

// Each reading operation, interrupted while a value waits: it throws once, and the value is still there.
TEST(InSlot, InterruptThrowsOnceAndKeepsTheValue)
{
    for (const bool reader : {true, false}) {
        InSlot<float> slot("in");
        slot.push(Data<float>(5.0F, Time(1)));
        slot.interrupt();
        slot.interrupt(); // adds nothing
        try {
            reader ? slot.pop() : slot.top();
            FAIL() << "not interrupted";
        } catch (const InterruptedException& interrupted) {
            EXPECT_EQ(interrupted.getMessage(), "");
        }
        EXPECT_EQ(slot.top().getValue(), 5.0F);
        EXPECT_EQ(slot.pop().getValue(), 5.0F);
        EXPECT_TRUE(slot.empty());
    }
}

TEST(InSlot, PushingItsOwnRecordIsHarmless)
{
    SmartPtr<std::vector<float>> shared;
    shared->assign({1.0F, 2.0F});
    OutSlot<SmartPtr<std::vector<float>>> out("out");
    InSlot<SmartPtr<std::vector<float>>> in("in");
    out.push(Data(shared, Time(1)));
    out.connect(&in); // delivers the out-slot's own record
    in.push(in.top());
    EXPECT_EQ(*in.pop().getValue(), (std::vector<float>{1.0F, 2.0F}));
}
