#include "Recording.h"

#include <gtest/gtest.h>
#include <memory>

using namespace Trovio;

namespace {

struct Pair {
    Events _events;
    RecordingInSlot<float> _in{_events};
    RecordingOutSlot<float> _out{_events};

    Events takeEvents() { return std::exchange(_events, {}); }
};

// The slot that is asked makes no difference.
class WiringFrom : public ::testing::TestWithParam<bool> {
protected:
    void connect(Pair& pair) { GetParam() ? pair._in.connect(&pair._out) : pair._out.connect(&pair._in); }
    void disconnect(Pair& pair) { GetParam() ? pair._in.disconnect(&pair._out) : pair._out.disconnect(&pair._in); }
};

} // namespace

TEST_P(WiringFrom, LastRecordIsDeliveredBetweenTheTwoStarts)
{
    Pair pair;
    pair._out.push(Data<float>(7.0F, Time(3)));
    connect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{"in start", "in data", "out start"}));
    EXPECT_EQ(pair._in.top().getTimeStamp(), Time(3));
    EXPECT_EQ(pair._in.pop().getValue(), 7.0F);
    disconnect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{"out stop", "in stop"}));
    pair._out.push(Data<float>(8.0F, Time(4)));
    EXPECT_TRUE(pair._in.empty());
}

TEST_P(WiringFrom, PairConnectedTwiceReceivesOnceAndNeedsTwoDisconnects)
{
    Pair pair;
    pair._out.push(Data<float>(1.0F, Time(1)));
    connect(pair);
    connect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{"in start", "in data", "out start"}));
    pair._out.push(Data<float>(2.0F, Time(2)));
    EXPECT_EQ(pair.takeEvents(), (Events{"in data"}));
    disconnect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{}));
    pair._out.push(Data<float>(3.0F, Time(3)));
    EXPECT_EQ(pair.takeEvents(), (Events{"in data"}));
    disconnect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{"out stop", "in stop"}));
}

TEST_P(WiringFrom, DisconnectingWhatWasNeverConnectedStopsBoth)
{
    Pair pair;
    disconnect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{"out stop", "in stop"}));
}

TEST_P(WiringFrom, FreshOutSlotDeliversNothing)
{
    Pair pair;
    connect(pair);
    EXPECT_EQ(pair.takeEvents(), (Events{"in start", "out start"}));
    disconnect(pair);
}

INSTANTIATE_TEST_SUITE_P(AskedOn, WiringFrom, ::testing::Bool(),
                         [](const auto& row) { return std::string(row.param ? "InSlot" : "OutSlot"); });

TEST(Wiring, NullAndOtherTypesAreIgnored)
{
    Events events;
    RecordingInSlot<float> in(events);
    RecordingOutSlot<double> out(events);
    in.connect(nullptr);
    out.connect(nullptr);
    in.disconnect(nullptr);
    out.disconnect(nullptr);
    in.connect(&out);
    out.connect(&in);
    in.disconnect(&out);
    out.disconnect(&in);
    EXPECT_EQ(events, Events{});
}

TEST(Wiring, OnlyTheFirstStartsAndOnlyTheLastStops)
{
    Events outEvents;
    Events inEvents;
    RecordingOutSlot<float> out(outEvents);
    RecordingInSlot<float> first(inEvents);
    BufferedInSlot<float> second("in", 4);
    out.connect(&first);
    out.connect(&second);
    EXPECT_EQ(outEvents, (Events{"out start"}));
    for (const float value : {1.0F, 2.0F, 3.0F})
        out.push(Data<float>(value, Time(1)));
    EXPECT_EQ(first.pop().getValue(), 3.0F);
    EXPECT_EQ(second.pop().getValue(), 1.0F);
    out.disconnect(&first);
    EXPECT_EQ(outEvents, (Events{"out start"}));
    out.disconnect(&second);
    EXPECT_EQ(outEvents, (Events{"out start", "out stop"}));
}

TEST(Wiring, MatchingInSlotIsFreshNamelessAndOfTheSameType)
{
    OutSlot<Vec3<float>> out("position");
    out.push(Data(Vec3<float>(1, 2, 3), Time(1)));
    const std::unique_ptr<BasicInSlot> in(out.createMatchingInSlot());
    EXPECT_EQ(in->getName(), "");
    EXPECT_EQ(in->getTypeID(), out.getTypeID());
    EXPECT_TRUE(in->empty());
    EXPECT_EQ(dynamic_cast<BufferedInSlot<Vec3<float>>*>(in.get()), nullptr);
    out.connect(in.get());
    EXPECT_FALSE(in->empty());
    out.disconnect(in.get());
}
