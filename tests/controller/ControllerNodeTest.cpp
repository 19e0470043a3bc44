#include "nodes/controller/ControllerNode.h"
#include "tests/controller/FakeDevices.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/NodeFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include <thread>

namespace Trovio::Nodes {
namespace {

using Calls = std::vector<std::string>;
using Vec3f = Vec3<float>;
const DeviceIdentity pad{std::string(32, 'a'), "S1", "p1", "Pad"};

/// Controllers on a hub with devices that are moved by hand.
class ControllerNodeTest : public ::testing::Test {
protected:
    using Standing = StandingNode<ControllerNode>;

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
    Probe<Vec3f> gyro("pad/gyro");
    settle();
    EXPECT_EQ(node->getState()._reason, "there is no free controller with serial='S1'; none is plugged in");
    const int device = plugIn();
    EXPECT_FALSE(node->getState()._degraded);
    EXPECT_EQ(_log.texts().back(), "node 'pad' runs again, uses " + pad.describe() + "\n");
    EXPECT_TRUE(gyro.slot().empty()) << "before the first reading";
    _clock.advance(5.0);
    _fake->move(device, InputKind::Button, 0, {1.0F, 0.0F, 0.0F});
    _fake->move(device, InputKind::Motion, Gyro, {0.1F, 0.2F, 0.3F});
    settle();
    EXPECT_EQ(gyro.slot().top().getTimeStamp(), Time(ManualClock::Epoch + 5.0));
    _fake->unplug(device);
    settle();
    EXPECT_TRUE(says(node->getState()._reason, "name='Pad'"));

    const int again = _fake->plugIn(pad);
    _fake->move(again, InputKind::Button, 0, {1.0F, 0.0F, 0.0F}); // held down while it was plugged in
    settle();
    EXPECT_FALSE(node->getState()._degraded);
    EXPECT_EQ(valuesOf(button), (std::vector<bool>{false, true, false, true}));
    EXPECT_EQ(valuesOf(gyro), (std::vector<Vec3f>{{0.1F, 0.2F, 0.3F}, {}}));
}

TEST_F(ControllerNodeTest, RumbleReachesTheMotorsInBounds)
{
    Feed<Vec2<float>> source("pad/rumble/motors");
    {
        Standing node(makeNode(), "label=pad hold=2.5");
        const auto send = [&](float slow, float fast) {
            source.push({slow, fast});
            settle();
        };
        send(1.0F, 1.0F);
        EXPECT_EQ(node.count("rumble refused"), 1U) << "nothing is plugged in";
        plugIn();
        send(0.5F, std::numeric_limits<float>::quiet_NaN());
        send(7.0F, -1.0F);
        EXPECT_EQ(node.count("rumbled"), 2U);
    }
    EXPECT_EQ(_fake->takeCalls(), (Calls{"open", "rumble 1 0.5 0 2.5", "rumble 1 1 0 2.5", "rumble 1 0 0 0", "close"}));
}

TEST_F(ControllerNodeTest, WithoutMemoryItCountsAndOpensTheControllersAgain)
{
    Standing node(makeNode(), "label=pad");
    plugIn();
    _fake->takeMemory();
    settle();
    EXPECT_EQ(node.count("without memory"), 1U);
    EXPECT_TRUE(node->getState()._degraded);
    plugIn();
    EXPECT_FALSE(node->getState()._degraded);
    EXPECT_EQ(_fake->takeCalls(), (Calls{"open", "rumble 1 0 0 0", "close", "open"}));
}

TEST_F(ControllerNodeTest, ControllersComeAndGoOnOneHub)
{
    // Each stop keeps its promise that nothing is pushed afterwards: the slots are gone then.
    const auto comeAndGo = [this](const std::string& label) {
        for (int round = 0; round < 50; ++round) {
            Probe<bool> button(label + "/button/a");
            const Standing node(makeNode(), "label=" + label);
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
    Calls calls = _fake->takeCalls();
    std::erase_if(calls, [](const std::string& call) { return call.starts_with("rumble"); });
    ASSERT_EQ(calls.size() % 2, 0U);
    for (std::size_t i = 0; i < calls.size(); ++i)
        EXPECT_EQ(calls[i], i % 2 == 0 ? "open" : "close");
}

} // namespace
} // namespace Trovio::Nodes
