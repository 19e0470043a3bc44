#include "monitor/tap/TapSet.h"
#include "tests/support/AllocationCount.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include "trovio/Values.h"

#include <array>
#include <gtest/gtest.h>
#include <latch>
#include <thread>

using namespace Monitor;
using namespace Trovio;

namespace {

/// A root with a namespace "scene" whose slots it shows.
class TapSetTest : public ::testing::Test {
protected:
    TapSetTest() { Root::init(); }
    ~TapSetTest() override { Root::shutdown(); }

    static void stand(const std::string& label, BasicOutSlot& slot)
    {
        auto space = std::make_unique<Namespace>();
        space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        space->addOutSlot("value", &slot);
        Root::get().addNamespace(label, std::move(space));
    }

    static std::size_t drain(TapSet& taps)
    {
        std::size_t count = 0;
        taps.drain([&count](const std::string&, const SlotCodec&, TapRecord&&) { ++count; });
        return count;
    }

    static void expectCounts(const TapSet& taps, std::uint64_t seen, std::uint64_t drained)
    {
        const std::vector<TapCounts> counts = taps.getCounts();
        ASSERT_EQ(counts.size(), 1U);
        EXPECT_EQ(counts[0]._seen, seen);
        EXPECT_EQ(counts[0]._drained, drained);
        EXPECT_EQ(counts[0]._refused, seen - drained);
    }
};

TEST_F(TapSetTest, LooksAtASlotOnceWhoeverLooks)
{
    OutSlot<float> out("out");
    stand("scene", out);
    out.push(Data<float>(1, Time(5)));
    {
        TapSet taps;
        EXPECT_FALSE(taps.add("scene/other"));
        EXPECT_TRUE(taps.add("scene/value"));
        EXPECT_TRUE(taps.add("scene/value"));
        out.push(Data<float>(2, Time(6)));
        std::vector<double> stamps;
        std::int64_t last = 0;
        taps.drain([&](const std::string& label, const SlotCodec& codec, TapRecord&& record) {
            EXPECT_EQ(label, "scene/value");
            EXPECT_EQ(codec.slotType(), "Float");
            EXPECT_GE(record._arrival, last);
            last = record._arrival;
            stamps.push_back(record._stamp.getSeconds());
        });
        EXPECT_EQ(stamps, (std::vector<double>{5, 6})) << "the last value comes at once";
        EXPECT_NEAR(static_cast<double>(last) / 1e9, Time::getCurrentTime().getSeconds(), 60);
        taps.remove("scene/value");
        EXPECT_TRUE(out.isActive());
        taps.remove("scene/value");
        EXPECT_FALSE(out.isActive());
        EXPECT_TRUE(taps.add("scene/value"));
    }
    EXPECT_FALSE(out.isActive());
}

struct Types final : Monitor::TapReceiver {
    void take(const SlotCodec& codec, TapRecord& /*record*/) override { _types.push_back(codec.slotType()); }
    std::vector<std::string_view> _types; // of the records
};

TEST_F(TapSetTest, ComesBackWithItsNodeWhateverTypeThatHasThen)
{
    OutSlot<float> narrow("narrow");
    OutSlot<double> wide("wide");
    stand("scene", narrow);
    TapSet taps;
    const auto types = std::make_shared<Types>();
    ASSERT_TRUE(taps.add("scene/value", types));
    narrow.push(Data<float>(1));
    Root::get().removeNamespace("scene");
    narrow.push(Data<float>(2));
    stand("scene", narrow); // brings its last value
    Root::get().removeNamespace("scene");
    stand("scene", wide);
    wide.push(Data<double>(3));
    for (const std::size_t expected : {2U, 3U}) { // the first drain sees that the type is another one
        EXPECT_EQ(drain(taps), 0U) << "all goes to the receiver";
        EXPECT_EQ(types->_types.size(), expected);
    }
    EXPECT_EQ(types->_types, (std::vector<std::string_view>{"Float", "Float", "Double"}));
    expectCounts(taps, 3, 3);
}

TEST_F(TapSetTest, KeepsNoMoreThanItsSizeAllows)
{
    OutSlot<std::string> texts("texts");
    stand("scene", texts);
    TapSet taps(TapSize{1'000, 2});
    ASSERT_TRUE(taps.add("scene/value"));
    for (const std::size_t length : {900U, 200U, 100U, 2'000U, 0U})
        texts.push(Data<std::string>(std::string(length, 'x')));
    EXPECT_EQ(drain(taps), 3U) << "900, 100 and 0";
    texts.push(Data<std::string>(std::string(2'000, 'x')));
    EXPECT_EQ(drain(taps), 1U) << "one text may be longer than all together";
    expectCounts(taps, 6, 4);
}

TEST_F(TapSetTest, AllocatesNothingWhereItIsPushedAndGivesPooledObjectsBack)
{
    using Array = SharedVector<float>;
    OutSlot<Array> out("out");
    stand("scene", out);
    TapSet taps(TapSize{1'000, 2});
    ASSERT_TRUE(taps.add("scene/value"));
    const auto makeRecord = [] {
        Array array;
        array.acquire();
        return Data<Array>(array, Time(1));
    };
    std::vector<Data<Array>> records;
    for (int i = 0; i < 3; ++i)
        records.push_back(makeRecord());
    const AllocationCount allocations;
    for (const Data<Array>& record : records)
        out.push(record);
    EXPECT_EQ(allocations.since(), 0U);
    const std::vector<float>* const first = records.front().getValue().get();
    records.erase(records.begin());
    EXPECT_NE(makeRecord().getValue().get(), first) << "the tap keeps it";
    EXPECT_EQ(drain(taps), 2U);
    EXPECT_EQ(makeRecord().getValue().get(), first) << "what was freed last is taken first";
    expectCounts(taps, 3, 2);
}

TEST_F(TapSetTest, ARecordThatThereIsNoMemoryForIsRefusedAlone)
{
    OutSlot<std::string> texts("texts");
    stand("scene", texts);
    TapSet taps;
    ASSERT_TRUE(taps.add("scene/value"));
    const auto pushThree = [&texts] { // each too long for memory that is used again
        for (int i = 0; i < 3; ++i)
            texts.push(Data<std::string>(std::string(2'000, 'x')));
    };
    pushThree();
    ASSERT_EQ(drain(taps), 3U);
    for (std::uint64_t nth = 1; nth <= 3; ++nth) {
        ASSERT_EQ(drain(taps), 0U) << "and gives back what it did not need";
        pushThree();
        std::size_t count = 0;
        {
            const AllocationFailure failure(nth);
            count = drain(taps);
        }
        EXPECT_EQ(count, 2U);
    }
    expectCounts(taps, 12, 9);
}

struct Sizes final : Monitor::TapReceiver {
    void take(const SlotCodec& /*codec*/, TapRecord& record) override
    {
        if (_count < _sizes.size())
            _sizes[_count] = record._cdr.size();
        ++_count;
    }
    void miss(std::uint64_t refused) override { _missed = refused; }

    std::array<std::size_t, 3> _sizes{}; // of the messages; takes no memory
    std::size_t _count = 0;
    std::uint64_t _missed = 0;
};

TEST_F(TapSetTest, SoIsALargeOneWhetherOrNotItWasItsTurnAndIsToldAtOnce)
{
    using Array = SharedVector<float>;
    OutSlot<Array> arrays("arrays");
    stand("scene", arrays);
    TapSet taps(TapSize{1'000, 3});
    const auto sizes = std::make_shared<Sizes>();
    ASSERT_TRUE(taps.add("scene/value", sizes));
    const auto pushThree = [&arrays] {
        for (std::size_t i = 1; i <= 3; ++i) {
            Array array;
            array.acquire();
            array->assign(1'000 * i, static_cast<float>(i));
            arrays.push(Data<Array>(array, Time(1)));
        }
    };
    pushThree();
    taps.drain();
    ASSERT_EQ(sizes->_count, 3U);
    for (std::uint64_t nth = 1; nth <= 4; ++nth) { // three to keep the values, and one for the first message
        taps.drain();                              // and gives back what it did not need
        pushThree();
        sizes->_count = 0;
        {
            const AllocationFailure failure(nth);
            taps.drain();
            EXPECT_TRUE(failure.happened());
        }
        EXPECT_EQ(sizes->_count, 2U);
        EXPECT_EQ(sizes->_missed, nth);
        EXPECT_EQ(sizes->_sizes[1], sizes->_sizes[0] + (nth == 2 ? 8'000 : 4'000)) << "each its own";
    }
    expectCounts(taps, 15, 11);
}

TEST_F(TapSetTest, WhatAnExceptionLeavesOfARoundIsRefused)
{
    OutSlot<float> out("out");
    stand("scene", out);
    TapSet taps;
    ASSERT_TRUE(taps.add("scene/value"));
    for (int i = 0; i < 3; ++i)
        out.push(Data<float>(1));
    EXPECT_THROW(taps.drain([](const std::string&, const SlotCodec&, TapRecord&&) { throw std::bad_alloc(); }),
                 std::bad_alloc);
    expectCounts(taps, 3, 1);
}

TEST_F(TapSetTest, CountsEveryRecordOfManyPushers)
{
    constexpr int pushers = 3, records = 4'000;
    std::vector<std::unique_ptr<OutSlot<Vec3<float>>>> outs;
    TapSet taps(TapSize{2'000, 1}); // so small that some are refused
    for (int i = 0; i < pushers; ++i) {
        stand("scene" + std::to_string(i), *outs.emplace_back(std::make_unique<OutSlot<Vec3<float>>>("out")));
        ASSERT_TRUE(taps.add("scene" + std::to_string(i) + "/value"));
    }
    std::latch start(pushers + 1);
    std::atomic<int> running = pushers;
    std::vector<std::thread> threads;
    for (const auto& out : outs)
        threads.emplace_back([&] {
            start.arrive_and_wait();
            for (int i = 1; i <= records; ++i)
                out->push(Data<Vec3<float>>(Vec3<float>(1, 2, 3), Time(i)));
            --running;
        });
    start.arrive_and_wait();
    std::map<std::string, std::uint64_t> drained;
    std::map<std::string, double> newest;
    for (bool last = false; !last;) {
        last = running == 0;
        std::int64_t arrival = 0;
        taps.drain([&](const std::string& label, const SlotCodec&, TapRecord&& record) {
            ++drained[label];
            EXPECT_LT(newest[label], record._stamp.getSeconds());
            newest[label] = record._stamp.getSeconds();
            EXPECT_LE(arrival, record._arrival);
            arrival = record._arrival;
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (const TapCounts& counts : taps.getCounts()) {
        EXPECT_EQ(counts._seen, static_cast<std::uint64_t>(records));
        EXPECT_EQ(counts._drained, drained[counts._label]);
        EXPECT_EQ(counts._seen, counts._drained + counts._refused);
    }
}

} // namespace
