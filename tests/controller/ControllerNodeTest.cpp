#include "nodes/controller/ControllerNode.h"
#include "tests/controller/FakeDevices.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/NodeFixture.h"
#include "tests/support/LogCapture.h"
#include <cmath>
#include <thread>

namespace Trovio::Nodes {
namespace {

using Calls = std::vector<std::string>;

/// Controllers on a hub with devices that are moved by hand.
class ControllerNodeTest : public ::testing::Test {
protected:
    using Standing = StandingNode<ControllerNode>;
    static inline const DeviceIdentity pad{std::string(32, 'a'), "S1", "p1", "Pad"};

    std::unique_ptr<ControllerNode> makeNode() { return std::make_unique<ControllerNode>(_hub); }
    void settle() { _fake->settle(_hub); }
    int plugIn()
    {
        const int device = _fake->plugIn(pad);
        settle();
        return device;
    }

    /// Takes all that has arrived.
    template <class T>
    static std::vector<T> valuesOf(Probe<T>& probe)
    {
        std::vector<T> values;
        while (!probe.slot().empty())
            values.push_back(probe.next().getValue());
        return values;
    }

    LogCapture _log;
    OpenRoot _root;
    ManualClock _clock;
    FakeDevices* _fake = new FakeDevices; // the hub's
    ControllerHub _hub{_clock, std::unique_ptr<ControllerDevices>(_fake)};
};

TEST_F(ControllerNodeTest, MotionCarriesTheTimeOfTheEvent)
{
    Standing node(makeNode(), "label=pad");
    Probe<Vec3<float>> gyro("pad/gyro");
    Probe<Vec3<float>> accelerometer("pad/accelerometer");
    const int device = plugIn();
    EXPECT_TRUE(gyro.slot().empty()) << "what the device may not have";
    _clock.advance(5.0);
    _fake->move(device, InputKind::Motion, Gyro, {0.1F, 0.2F, 0.3F});
    _fake->move(device, InputKind::Motion, Accelerometer, {0.0F, 9.8F, 0.0F});
    settle();
    const auto record = gyro.next();
    EXPECT_EQ(record.getValue(), Vec3<float>(0.1F, 0.2F, 0.3F));
    EXPECT_EQ(record.getTimeStamp(), Time(ManualClock::Epoch + 5.0));
    EXPECT_EQ(accelerometer.next().getValue(), Vec3<float>(0.0F, 9.8F, 0.0F));
}

TEST_F(ControllerNodeTest, NothingIsLostBetweenTwoLooksAndADiagonalIsOneRecord)
{
    Standing node(makeNode(), "label=pad");
    Probe<Vec2<float>> stick("pad/stick/left");
    Probe<float> trigger("pad/trigger/right");
    Probe<bool> button("pad/button/b");
    const int device = plugIn();
    _fake->move(device, InputKind::Axis, LeftX, {0.5F, 0.0F, 0.0F});
    _fake->move(device, InputKind::Axis, LeftY, {-0.5F, 0.0F, 0.0F});
    _fake->move(device, InputKind::Button, 1, {1.0F, 0.0F, 0.0F});
    _fake->move(device, InputKind::Button, 1, {1.0F, 0.0F, 0.0F}); // no event
    _fake->move(device, InputKind::Button, 1, {});
    _fake->move(device, InputKind::Axis, RightTrigger, {0.25F, 0.0F, 0.0F});
    _fake->move(device, InputKind::Axis, LeftX, {1.0F, 0.0F, 0.0F});
    settle();
    // The first of each shows how the device stood when it was plugged in.
    EXPECT_EQ(valuesOf(stick), (std::vector<Vec2<float>>{{}, {0.5F, -0.5F}, {1.0F, -0.5F}}));
    EXPECT_EQ(valuesOf(button), (std::vector<bool>{false, true, false}));
    EXPECT_EQ(valuesOf(trigger), (std::vector<float>{0.0F, 0.25F}));
    EXPECT_EQ(node.count("records"), 2U + 2U + 21U + 5U);
}

TEST_F(ControllerNodeTest, UnpluggedItRestsAndPluggedInAgainItResumes)
{
    Standing node(makeNode(), "label=pad serial=S1");
    Probe<bool> button("pad/button/a");
    Probe<Vec3<float>> gyro("pad/gyro");
    settle();
    EXPECT_EQ(node->getState()._reason, "there is no free controller with serial='S1'; none is plugged in");
    const int device = plugIn();
    EXPECT_FALSE(node->getState()._degraded);
    _fake->move(device, InputKind::Button, 0, {1.0F, 0.0F, 0.0F});
    _fake->move(device, InputKind::Motion, Gyro, {1.0F, 0.0F, 0.0F});
    settle();
    _fake->unplug(device);
    settle();
    EXPECT_NE(node->getState()._reason.find("name='Pad'"), std::string::npos) << node->getState()._reason;

    const int again = _fake->plugIn(pad);
    _fake->move(again, InputKind::Button, 0, {1.0F, 0.0F, 0.0F}); // held down while it was plugged in
    settle();
    EXPECT_FALSE(node->getState()._degraded);
    EXPECT_EQ(valuesOf(button), (std::vector<bool>{false, true, false, true}));
    EXPECT_EQ(valuesOf(gyro), (std::vector<Vec3<float>>{{1.0F, 0.0F, 0.0F}, {}}));
}

TEST_F(ControllerNodeTest, RumbleReachesTheMotorsInBounds)
{
    OutSlot<float> both("both");
    OutSlot<Vec2<float>> each("each");
    Root::get().addOutSlot("both", &both);
    Root::get().addOutSlot("each", &each);
    Root::get().addRoute("both", "pad/rumble");
    Root::get().addRoute("each", "pad/rumble/motors");
    {
        Standing node(makeNode(), "label=pad hold=2.5");
        both.push(Data<float>(1.0F));
        settle();
        EXPECT_EQ(node.count("rumble refused"), 1U) << "nothing is plugged in";
        plugIn();
        _fake->takeCalls();
        const auto send = [&](auto& slot, const auto& value) {
            slot.push({value, Time(1.0)});
            settle();
        };
        send(both, 0.5F);
        send(both, std::numeric_limits<float>::quiet_NaN());
        send(each, Vec2<float>(7.0F, -1.0F));
        EXPECT_EQ(node.count("rumbled"), 3U);
    }
    EXPECT_EQ(_fake->takeCalls(),
              (Calls{"rumble 1 0.5 0.5 2.5", "rumble 1 0 0 2.5", "rumble 1 1 0 2.5", "rumble 1 0 0 0", "close"}));
}

TEST_F(ControllerNodeTest, DevicesThatCannotBeOpenedAreTriedAgain)
{
    _fake->failNextOpen("no permission");
    _fake->plugIn(pad);
    Standing node(makeNode(), "");
    while (node->getState()._reason != "no permission")
        std::this_thread::yield();
    for (; node->getState()._degraded; std::this_thread::yield())
        _clock.advance(1.0);
    EXPECT_EQ(_fake->takeCalls(), (Calls{"open", "open"}));
}

TEST_F(ControllerNodeTest, ControllersComeAndGoOnOneHub)
{
    // Every stop closes the promise that nothing is pushed afterwards: the probes are gone by then.
    const auto comeAndGo = [this](const std::string& label) {
        for (int round = 0; round < 50; ++round) {
            Probe<bool> button(label + "/button/a");
            Standing node(makeNode(), "label=" + label);
        }
    };
    std::thread first(comeAndGo, "first");
    std::thread second(comeAndGo, "second");
    for (int round = 0; round < 200; ++round) {
        const int device = _fake->plugIn(pad);
        _fake->move(device, InputKind::Button, 0, {1.0F, 0.0F, 0.0F});
        _hub.wake();
        _fake->unplug(device);
        _hub.wake();
    }
    first.join();
    second.join();
    // Opened and closed in turn, whoever was there, and rumbling devices were told to rest in between.
    Calls calls = _fake->takeCalls();
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("rumble"); });
    ASSERT_EQ(calls.size() % 2, 0U);
    for (std::size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(calls[i], i % 2 == 0 ? "open" : "close");
}

TEST_F(ControllerNodeTest, SettingsThatMakeNoSenseAreRefused)
{
    ControllerNode node(_hub);
    node.setType(ControllerNode::getEntry());
    for (const char* settings : {"hold=0", "guid=12", "index=0"})
        EXPECT_THROW(node.setFieldValues(settings), InvalidFieldException) << settings;
}

} // namespace
} // namespace Trovio::Nodes
