#include "trovio/BufferedInSlot.h"

#include <gtest/gtest.h>

using namespace Trovio;

namespace {

struct KeepsNewest {
    const char* _name;
    unsigned _capacity;
    int _pushed;
    std::vector<long> _expected;
};

class BufferedInSlotKeepsNewest : public ::testing::TestWithParam<KeepsNewest> {};

} // namespace

TEST_P(BufferedInSlotKeepsNewest, OldestFirst)
{
    const auto& row = GetParam();
    BufferedInSlot<long> slot("in", row._capacity);
    for (int i = 1; i <= row._pushed; ++i)
        slot.push(Data<long>(i, Time(i)));
    std::vector<long> taken;
    while (!slot.empty()) {
        EXPECT_EQ(slot.top().getValue(), slot.top().getValue());
        const auto record = slot.pop();
        EXPECT_EQ(record.getTimeStamp(), Time(static_cast<double>(record.getValue())));
        taken.push_back(record.getValue());
    }
    EXPECT_EQ(taken, row._expected);
}

INSTANTIATE_TEST_SUITE_P(Capacity, BufferedInSlotKeepsNewest,
                         ::testing::Values(KeepsNewest{"NothingPushed", 3, 0, {}},
                                           KeepsNewest{"ExactlyFull", 3, 3, {1, 2, 3}},
                                           KeepsNewest{"WrapsOnce", 3, 5, {3, 4, 5}},
                                           KeepsNewest{"WrapsOften", 3, 100, {98, 99, 100}},
                                           KeepsNewest{"OneRecord", 1, 4, {4}}),
                         [](const auto& row) { return std::string(row.param._name); });

TEST(BufferedInSlot, InterleavedReadingKeepsTheOrderAcrossTheEnd)
{
    BufferedInSlot<long> slot("in", 3);
    long next = 1;
    long expected = 1;
    for (int round = 0; round < 20; ++round) {
        slot.push(Data<long>(next++, Time(0)));
        slot.push(Data<long>(next++, Time(0)));
        EXPECT_EQ(slot.pop().getValue(), expected++);
        EXPECT_EQ(slot.pop().getValue(), expected++);
    }
    EXPECT_TRUE(slot.empty());
}

TEST(BufferedInSlot, TopOfAnEmptyRingShowsWhatStandsThere)
{
    BufferedInSlot<long> slot("in", 3);
    EXPECT_EQ(slot.top().getValue(), 0);
    for (long value : {1, 2, 3}) {
        slot.push(Data<long>(value, Time(1)));
        slot.pop();
    }
    EXPECT_EQ(slot.top().getValue(), 1) << "the record pushed three pushes before the next one";
}

TEST(BufferedInSlot, InterruptThrowsOnceAndKeepsTheRing)
{
    BufferedInSlot<long> slot("in", 2);
    slot.push(Data<long>(1, Time(1)));
    slot.push(Data<long>(2, Time(2)));
    slot.interrupt();
    EXPECT_THROW(slot.pop(), InterruptedException);
    slot.interrupt();
    EXPECT_THROW(slot.top(), InterruptedException);
    EXPECT_EQ(slot.top().getValue(), 1);
    EXPECT_EQ(slot.pop().getValue(), 1);
    EXPECT_EQ(slot.pop().getValue(), 2);
    EXPECT_TRUE(slot.empty());
}
