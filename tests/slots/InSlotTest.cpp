#include "trovio/OutSlot.h"
#include "trovio/TryPop.h"

#include <functional>
#include <gtest/gtest.h>

using namespace Trovio;

namespace {

void push(InSlot<long>& slot, long first, long last)
{
    for (long i = first; i <= last; ++i)
        slot.push(Data<long>(i, Time(static_cast<double>(i))));
}

/// Takes all that waits, each record with the stamp that it came with.
std::vector<long> drain(InSlot<long>& slot)
{
    std::vector<long> taken;
    while (!slot.empty()) {
        EXPECT_EQ(slot.top().getValue(), slot.top().getValue()) << "looking takes nothing";
        const auto record = slot.pop();
        EXPECT_EQ(record.getTimeStamp(), Time(static_cast<double>(record.getValue())));
        taken.push_back(record.getValue());
    }
    return taken;
}

// Each reading operation, interrupted while values wait: it throws once, and the values are still there.
void expectInterruptThrowsOnce(InSlot<long>& slot, const std::vector<long>& waiting)
{
    const std::function<void()> readings[] = {[&slot] { slot.pop(); }, [&slot] { slot.top(); },
                                              [&slot] { tryPop<long>(slot, [](auto&&) {}); }};
    for (const auto& read : readings) {
        push(slot, 1, 2);
        slot.interrupt();
        slot.interrupt(); // adds nothing
        try {
            read();
            ADD_FAILURE() << "not interrupted";
        } catch (const InterruptedException& interrupted) {
            EXPECT_EQ(interrupted.getMessage(), "");
        }
        EXPECT_EQ(drain(slot), waiting);
    }
}

} // namespace

TEST(InSlot, KeepsTheNewestAndKnowsWhetherItWasRead)
{
    InSlot<long> slot("in");
    EXPECT_TRUE(slot.empty());
    EXPECT_EQ(slot.top().getTimeStamp(), Time(0));
    push(slot, 1, 3);
    EXPECT_EQ(drain(slot), std::vector<long>{3});
    EXPECT_EQ(slot.top().getValue(), 3) << "a value that was taken can still be looked at";
}

TEST(InSlot, InterruptThrowsOnceAndKeepsTheValue)
{
    InSlot<long> slot("in");
    expectInterruptThrowsOnce(slot, {2});
}

TEST(InSlot, AFrameLeavesWhatAnotherReaderWasPromised)
{
    BufferedInSlot<long> slot("in", 2);
    long taken = 0;
    const auto take = [&] { return tryPop<long>(slot, [&](const auto& r) { taken = r.getValue(); }); };
    EXPECT_FALSE(take());
    push(slot, 1, 2);
    slot.down();
    EXPECT_TRUE(take());
    EXPECT_FALSE(take());
    EXPECT_EQ(taken, 1);
    EXPECT_TRUE(slot.mayHoldRecord());
    EXPECT_EQ(slot.getCounts().waiting, 1U);
}

TEST(BufferedInSlotKeepsNewest, OldestFirst)
{
    struct Row {
        unsigned _capacity;
        long _pushed;
        std::vector<long> _expected;
    };
    for (const Row& row :
         {Row{3, 0, {}}, Row{3, 3, {1, 2, 3}}, Row{3, 5, {3, 4, 5}}, Row{3, 100, {98, 99, 100}}, Row{1, 4, {4}}}) {
        BufferedInSlot<long> slot("in", row._capacity);
        push(slot, 1, row._pushed);
        EXPECT_EQ(drain(slot), row._expected);
        push(slot, 1, 1);
        EXPECT_EQ(drain(slot), std::vector<long>{1}) << "wherever reading ended";
    }
}

TEST(BufferedInSlot, TopOfAnEmptyRingShowsWhatStandsThere)
{
    BufferedInSlot<long> slot("in", 3);
    EXPECT_EQ(slot.top().getValue(), 0);
    push(slot, 1, 3);
    drain(slot);
    EXPECT_EQ(slot.top().getValue(), 1) << "the record pushed three pushes before the next one";
}

TEST(BufferedInSlot, InterruptThrowsOnceAndKeepsTheRing)
{
    BufferedInSlot<long> slot("in", 2);
    expectInterruptThrowsOnce(slot, {1, 2});
}
