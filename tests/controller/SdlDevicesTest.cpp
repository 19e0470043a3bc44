#include "nodes/controller/ControllerNode.h"
#include "tests/nodes/NodeFixture.h"
#include "tests/support/LogCapture.h"
#include <SDL.h>
#include <algorithm>
#include <csignal>
#include <future>

namespace Trovio::Nodes {
namespace {

/// SDL, in use by the test as well, so that there can be virtual joysticks at any time.
class UsedSdl {
public:
    UsedSdl()
    {
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_JOYSTICK_HIDAPI, "0");
        EXPECT_EQ(SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER), 0) << SDL_GetError();
    }
    ~UsedSdl() { SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER); }
};

/// A joystick that a test moves. It is plugged in while this lives.
class VirtualPad {
public:
    explicit VirtualPad(const char* name, SDL_JoystickType type = SDL_JOYSTICK_TYPE_GAMECONTROLLER)
    {
        SDL_VirtualJoystickDesc description{};
        description.version = SDL_VIRTUAL_JOYSTICK_DESC_VERSION;
        description.type = static_cast<Uint16>(type);
        description.naxes = SDL_CONTROLLER_AXIS_MAX;
        description.nbuttons = SDL_CONTROLLER_BUTTON_MAX;
        description.name = name;
        description.userdata = this;
        description.Rumble = [](void* self, Uint16 slow, Uint16 fast) {
            static_cast<VirtualPad*>(self)->noteRumble({slow, fast});
            return 0;
        };
        SDL_LockJoysticks();
        const int index = SDL_JoystickAttachVirtualEx(&description);
        _joystick = SDL_JoystickOpen(index);
        SDL_UnlockJoysticks();
        EXPECT_NE(_joystick, nullptr) << SDL_GetError();
    }
    ~VirtualPad()
    {
        SDL_LockJoysticks();
        const SDL_JoystickID own = SDL_JoystickInstanceID(_joystick);
        for (int index = SDL_NumJoysticks(); index-- > 0;)
            if (SDL_JoystickGetDeviceInstanceID(index) == own)
                SDL_JoystickDetachVirtual(index);
        SDL_UnlockJoysticks();
        SDL_JoystickClose(_joystick);
    }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    void setAxis(int axis, Sint16 value) { SDL_JoystickSetVirtualAxis(_joystick, axis, value); }
    void setButton(int button, bool down) { SDL_JoystickSetVirtualButton(_joystick, button, down ? 1 : 0); }

    /// Waits for the first one.
    std::pair<Uint16, Uint16> getRumble() { return _rumble.get_future().get(); }

private:
    void noteRumble(std::pair<Uint16, Uint16> strength)
    {
        if (!std::exchange(_rumbled, true))
            _rumble.set_value(strength);
    }

    SDL_Joystick* _joystick = nullptr;
    std::promise<std::pair<Uint16, Uint16>> _rumble;
    bool _rumbled = false;
};

class SdlDevicesTest : public ::testing::Test {
protected:
    using Standing = StandingNode<ControllerNode>;
    static std::unique_ptr<ControllerNode> makeNode()
    {
        return std::make_unique<ControllerNode>(ControllerHub::system());
    }

    /// Reads until the value comes; what comes before is how the device stood.
    template <class T>
    static Data<T> waitFor(Probe<T>& probe, const T& value)
    {
        for (;;)
            if (const auto record = probe.next(); record.getValue() == value)
                return record;
    }

    LogCapture _log;
    OpenRoot _root;
    UsedSdl _sdl;
};

TEST_F(SdlDevicesTest, MovesArriveScaledAndInWallTime)
{
    VirtualPad pad("Test Pad");
    Standing node(makeNode(), "label=pad name='Test Pad'");
    Probe<Vec2<float>> left("pad/stick/left");
    Probe<Vec2<float>> right("pad/stick/right");
    Probe<float> trigger("pad/trigger/left");
    Probe<bool> button("pad/button/paddle4");
    waitFor(button, false);

    const Time before = Time::getCurrentTime();
    pad.setAxis(SDL_CONTROLLER_AXIS_LEFTX, -32768);
    pad.setAxis(SDL_CONTROLLER_AXIS_LEFTY, -32768); // up
    pad.setAxis(SDL_CONTROLLER_AXIS_RIGHTX, 32767);
    pad.setAxis(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 32767);
    pad.setButton(SDL_CONTROLLER_BUTTON_PADDLE4, true);
    const auto record = waitFor(left, {-1.0F, 1.0F});
    EXPECT_GE(record.getTimeStamp().getSeconds(), before.getSeconds());
    EXPECT_LE(record.getTimeStamp().getSeconds(), Time::getCurrentTime().getSeconds());
    waitFor(right, {1.0F, 0.0F});
    waitFor(trigger, 1.0F);
    waitFor(button, true);
}

TEST_F(SdlDevicesTest, UnpluggedItRestsAndResumesUnderTheSameLabels)
{
    Standing node(makeNode(), "label=pad name='Test Pad'");
    Probe<bool> button("pad/button/a");
    for (int round = 0; round < 3; ++round) {
        {
            VirtualPad pad("Test Pad");
            pad.setButton(SDL_CONTROLLER_BUTTON_A, true);
            waitFor(button, true);
            EXPECT_FALSE(node->getState()._degraded) << node->getState()._reason;
        }
        waitFor(button, false);
    }
}

TEST_F(SdlDevicesTest, EachNodeGetsItsOwnDevice)
{
    Standing first(makeNode(), "label=first name='Pad One'");
    Standing second(makeNode(), "label=second name='Pad Two'");
    Probe<bool> one("first/button/x");
    Probe<bool> two("second/button/y");
    VirtualPad padTwo("Pad Two");
    VirtualPad padOne("Pad One");
    padOne.setButton(SDL_CONTROLLER_BUTTON_X, true);
    padTwo.setButton(SDL_CONTROLLER_BUTTON_Y, true);
    waitFor(one, true);
    waitFor(two, true);
}

TEST_F(SdlDevicesTest, RumbleReachesTheDevice)
{
    VirtualPad pad("Test Pad");
    Standing node(makeNode(), "label=pad name='Test Pad'");
    Probe<bool> button("pad/button/a");
    waitFor(button, false);
    OutSlot<Vec2<float>> source("source");
    Root::get().addOutSlot("source", &source);
    Root::get().addRoute("source", "pad/rumble/motors");
    source.push(Data<Vec2<float>>({0.5F, 1.0F}));
    EXPECT_EQ(pad.getRumble(), (std::pair<Uint16, Uint16>{32768, 65535}));
    Root::get().removeSlot("source");
}

TEST_F(SdlDevicesTest, WhatIsNoControllerIsReported)
{
    VirtualPad wheel("Test Wheel", SDL_JOYSTICK_TYPE_WHEEL);
    VirtualPad pad("Test Pad");
    Standing node(makeNode(), "label=pad name='Test Pad'");
    Probe<bool> button("pad/button/a");
    waitFor(button, false);
    const auto texts = _log.texts();
    EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                            [](const auto& text) { return text.find("'Test Wheel'") != text.npos; }),
              1);
}

} // namespace
} // namespace Trovio::Nodes
