#include "tests/support/AllocationCount.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <functional>
#include <gtest/gtest.h>

using namespace Trovio;

namespace {

using Text = std::string;

/// A text that no place has room for yet, where the ones before were shorter.
Data<Text> record(int number)
{
    return {Text(static_cast<std::size_t>(100 * number), 'x'), Time(number)};
}

struct Listener : SlotListener {
    void dataArrived(Slot&) override { ++_arrived; }
    int _arrived = 0;
};

using Make = std::function<std::unique_ptr<InSlot<Text>>()>;
const std::pair<Make, std::vector<int>> kinds[] = {
    // What waits after two pushes.
    {[] { return std::make_unique<InSlot<Text>>("in"); }, {2}},
    {[] { return std::make_unique<BufferedInSlot<Text>>("ring", 2); }, {1, 2}},
    {[] { return std::make_unique<BufferedInSlot<Text>>("ring", 3); }, {1, 2}},
};

} // namespace

TEST(CopyThatFails, LeavesAnInSlotAsItWas)
{
    for (const auto& [make, waiting] : kinds) {
        const auto slot = make();
        Listener listener;
        slot->setListener(&listener);
        slot->push(record(1));
        slot->push(record(2));
        const InSlotCounts before = slot->getCounts();
        const Data<Text> third = record(3);
        {
            const AllocationFailure failure(1, AllocationFailure::All);
            slot->push(third);
            EXPECT_THROW(slot->top(), std::bad_alloc);
            EXPECT_THROW(slot->pop(), std::bad_alloc);
        }
        EXPECT_EQ(slot->getCounts(), before);
        EXPECT_EQ(slot->getActivity()._notStored, 1U);
        EXPECT_EQ(listener._arrived, 2) << "nobody hears of what was not stored";
        for (const int number : waiting) {
            const Data<Text> taken = slot->pop();
            EXPECT_EQ(taken.getValue(), record(number).getValue());
            EXPECT_EQ(taken.getTimeStamp(), Time(number));
        }
        EXPECT_TRUE(slot->empty());
    }
}

TEST(CopyThatFails, LeavesAnOutSlotAndItsOtherReadersAsTheyWere)
{
    OutSlot<Text> out("out");
    InSlot<Text> first("first"), second("second");
    out.connect(&first);
    out.connect(&second);
    out.push(record(1));
    const Data<Text> next = record(2);
    {
        const AllocationFailure failure(1); // of the copy that the out-slot keeps
        EXPECT_THROW(out.push(next), std::bad_alloc);
    }
    EXPECT_EQ(out.getWritten(), 1U);
    {
        const AllocationFailure failure(2); // of the copy for the first reader
        EXPECT_NO_THROW(out.push(next));
    }
    EXPECT_EQ(out.getWritten(), 2U);
    EXPECT_EQ(first.pop().getTimeStamp(), Time(1));
    EXPECT_EQ(second.pop().getTimeStamp(), Time(2));
    out.disconnect(&first);
    out.disconnect(&second);
}
