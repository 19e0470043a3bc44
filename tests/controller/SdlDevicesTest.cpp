#include "nodes/controller/ControllerNode.h"
#include "tests/nodes/NodeFixture.h"
#include "tests/support/LogCapture.h"
#include <SDL.h>
#include <algorithm>

namespace Trovio::Nodes {
namespace {

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
            const Vec2<float> levels(slow, fast);
            static_cast<VirtualPad*>(self)->_rumbles.push(Data<Vec2<float>>(levels));
            return 0;
        };
        SDL_LockJoysticks();
        _joystick = SDL_JoystickOpen(SDL_JoystickAttachVirtualEx(&description));
        SDL_UnlockJoysticks();
    }
    ~VirtualPad()
    {
        SDL_LockJoysticks();
        for (int index = SDL_NumJoysticks(); index-- > 0;)
            if (SDL_JoystickGetDeviceInstanceID(index) == SDL_JoystickInstanceID(_joystick))
                SDL_JoystickDetachVirtual(index);
        SDL_UnlockJoysticks();
        SDL_JoystickClose(_joystick);
    }
    VirtualPad(const VirtualPad&) = delete;
    VirtualPad& operator=(const VirtualPad&) = delete;

    void setAxis(int axis, Sint16 value) { SDL_JoystickSetVirtualAxis(_joystick, axis, value); }
    void press(int button) { SDL_JoystickSetVirtualButton(_joystick, button, 1); }

    /// Waits for the next one.
    Vec2<float> getRumble() { return _rumbles.pop().getValue(); }

private:
    SDL_Joystick* _joystick = nullptr;
    BufferedInSlot<Vec2<float>> _rumbles{"rumbles", 16};
};

/// SDL in use by the test as well, so that there can be virtual joysticks at any time.
class SdlDevicesTest : public ::testing::Test {
protected:
    SdlDevicesTest()
    {
        SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
        SDL_SetHint(SDL_HINT_JOYSTICK_HIDAPI, "0");
        EXPECT_EQ(SDL_InitSubSystem(SDL_INIT_GAMECONTROLLER), 0) << SDL_GetError();
    }
    ~SdlDevicesTest() override { SDL_QuitSubSystem(SDL_INIT_GAMECONTROLLER); }

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
};

TEST_F(SdlDevicesTest, MovesArriveScaledRumbleReachesTheDeviceAndItMayGo)
{
    const VirtualPad wheel("Test Wheel", SDL_JOYSTICK_TYPE_WHEEL);
    std::optional<VirtualPad> plugged(std::in_place, "Test Pad");
    VirtualPad& pad = *plugged;
    Standing node(makeNode(), "label=pad name='Test Pad'");
    Probe<Vec2<float>> stick("pad/stick/left");
    Probe<float> trigger("pad/trigger/left");
    Probe<bool> button("pad/button/paddle4");
    waitFor(button, false);

    const Time before = Time::getCurrentTime();
    pad.setAxis(SDL_CONTROLLER_AXIS_LEFTX, -32768);
    pad.setAxis(SDL_CONTROLLER_AXIS_LEFTY, -32768); // up
    pad.setAxis(SDL_CONTROLLER_AXIS_TRIGGERLEFT, 32767);
    pad.press(SDL_CONTROLLER_BUTTON_PADDLE4);
    const Time stamp = waitFor(stick, {-1.0F, 1.0F}).getTimeStamp();
    EXPECT_GE(stamp.getSeconds(), before.getSeconds());
    EXPECT_LE(stamp.getSeconds(), Time::getCurrentTime().getSeconds());
    waitFor(trigger, 1.0F);
    waitFor(button, true);

    Feed<Vec2<float>> source("pad/rumble/motors");
    source.push({0.5F, 1.0F});
    EXPECT_EQ(pad.getRumble(), Vec2<float>(32768.0F, 65535.0F));

    plugged.reset();
    waitFor(button, false);
    await([&] { return node->getState()._degraded; }); // the library lets the buttons go before it tells of the removal
    plugged.emplace("Test Pad").press(SDL_CONTROLLER_BUTTON_PADDLE4);
    waitFor(button, true);

    const auto texts = _log.texts();
    const auto isAboutWheel = [](const auto& text) { return text.find("'Test Wheel'") != text.npos; };
    EXPECT_EQ(std::count_if(texts.begin(), texts.end(), isAboutWheel), 1) << "it is no controller";
}

} // namespace
} // namespace Trovio::Nodes
