#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

using namespace Trovio;

namespace {

using Events = std::vector<std::string>;

template <class T>
struct RecordingInSlot : InSlot<T> {
    explicit RecordingInSlot(Events& events) : InSlot<T>("in"), _events(events) {}
    void startInSlot() override { _events.push_back("in start"); }
    void stopInSlot() override { _events.push_back("in stop"); }
    void newData() override { _events.push_back("in data"); }
    Events& _events;
};

template <class T>
struct RecordingOutSlot : OutSlot<T> {
    explicit RecordingOutSlot(Events& events) : OutSlot<T>("out"), _events(events) {}
    void startOutSlot() override { _events.push_back("out start"); }
    void stopOutSlot() override { _events.push_back("out stop"); }
    Events& _events;
};

// The slot that is asked makes no difference.
class WiringFrom : public ::testing::TestWithParam<bool> {
protected:
    Events connecting()
    {
        GetParam() ? _in.connect(&_out) : _out.connect(&_in);
        return std::exchange(_events, {});
    }
    Events disconnecting()
    {
        GetParam() ? _in.disconnect(&_out) : _out.disconnect(&_in);
        return std::exchange(_events, {});
    }
    Events pushing(float value)
    {
        _out.push(Data<float>(value, Time(value)));
        return std::exchange(_events, {});
    }

    Events _events;
    RecordingInSlot<float> _in{_events};
    RecordingOutSlot<float> _out{_events};
};

} // namespace

TEST_P(WiringFrom, LastRecordIsDeliveredBetweenTheTwoStarts)
{
    EXPECT_EQ(connecting(), (Events{"in start", "out start"})) << "a fresh out-slot delivers nothing";
    disconnecting();
    EXPECT_EQ(pushing(7), Events());
    EXPECT_EQ(connecting(), (Events{"in start", "in data", "out start"}));
    EXPECT_EQ(_in.top().getTimeStamp(), Time(7));
    EXPECT_EQ(disconnecting(), (Events{"out stop", "in stop"}));
    EXPECT_EQ(disconnecting(), (Events{"out stop", "in stop"})) << "also without connection";
}

TEST_P(WiringFrom, PairConnectedTwiceReceivesOnceAndNeedsTwoDisconnects)
{
    pushing(1);
    connecting();
    EXPECT_EQ(connecting(), Events());
    EXPECT_EQ(pushing(2), (Events{"in data"}));
    EXPECT_EQ(disconnecting(), Events());
    EXPECT_EQ(pushing(3), (Events{"in data"}));
    EXPECT_EQ(disconnecting(), (Events{"out stop", "in stop"}));
}

INSTANTIATE_TEST_SUITE_P(AskedOn, WiringFrom, ::testing::Bool(),
                         [](const auto& row) { return std::string(row.param ? "InSlot" : "OutSlot"); });

TEST(Wiring, NullAndOtherTypesAreIgnored)
{
    Events events;
    RecordingInSlot<float> in(events);
    RecordingOutSlot<double> out(events);
    for (BasicOutSlot* other : {static_cast<BasicOutSlot*>(nullptr), static_cast<BasicOutSlot*>(&out)}) {
        in.connect(other);
        in.disconnect(other);
    }
    for (BasicInSlot* other : {static_cast<BasicInSlot*>(nullptr), static_cast<BasicInSlot*>(&in)}) {
        out.connect(other);
        out.disconnect(other);
    }
    EXPECT_EQ(events, Events());
}

TEST(Wiring, OnlyTheFirstStartsAndOnlyTheLastStops)
{
    Events events;
    RecordingOutSlot<float> out(events);
    InSlot<float> first("in");
    BufferedInSlot<float> second("in", 4);
    out.connect(&first);
    out.connect(&second);
    out.push(Data<float>(1, Time(1)));
    EXPECT_EQ(first.pop().getValue(), second.pop().getValue());
    out.disconnect(&first);
    EXPECT_EQ(events, (Events{"out start"}));
    out.disconnect(&second);
    EXPECT_EQ(events, (Events{"out start", "out stop"}));
}

TEST(Wiring, MatchingInSlotIsFreshNamelessAndOfTheSameType)
{
    OutSlot<Vec3<float>> out("position");
    const std::unique_ptr<BasicInSlot> in(out.createMatchingInSlot());
    EXPECT_EQ(in->getName(), "");
    EXPECT_EQ(in->getTypeID(), out.getTypeID());
    EXPECT_FALSE(in->isActive());
    EXPECT_EQ(dynamic_cast<BufferedInSlot<Vec3<float>>*>(in.get()), nullptr);
}
