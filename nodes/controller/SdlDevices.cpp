#include "nodes/controller/SdlDevices.h"

#include "nodes/shared/Report.h"
#include <SDL.h>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <utility>

namespace Trovio::Nodes {

namespace {

constexpr Uint32 subsystems = SDL_INIT_GAMECONTROLLER;
constexpr std::size_t maxEventsAtOnce = 64;
constexpr SDL_SensorType sensors[MotionCount] = {SDL_SENSOR_GYRO, SDL_SENSOR_ACCEL};

// The indices are those of SDL.
constexpr int sdlAxes[AxisCount] = {SDL_CONTROLLER_AXIS_LEFTX,       SDL_CONTROLLER_AXIS_LEFTY,
                                    SDL_CONTROLLER_AXIS_RIGHTX,      SDL_CONTROLLER_AXIS_RIGHTY,
                                    SDL_CONTROLLER_AXIS_TRIGGERLEFT, SDL_CONTROLLER_AXIS_TRIGGERRIGHT};
static_assert(std::is_sorted(std::begin(sdlAxes), std::end(sdlAxes)) && sdlAxes[0] == 0 &&
              sdlAxes[AxisCount - 1] == AxisCount - 1);
static_assert(SDL_CONTROLLER_BUTTON_MAX >= ButtonCount && SDL_CONTROLLER_BUTTON_TOUCHPAD == ButtonCount - 1);

/// While it lives, the index of each joystick stays what it is.
struct IndicesStay {
    IndicesStay() { SDL_LockJoysticks(); }
    ~IndicesStay() { SDL_UnlockJoysticks(); }
    IndicesStay(const IndicesStay&) = delete;
    IndicesStay& operator=(const IndicesStay&) = delete;
};

std::string textOf(const char* text)
{
    return text ? text : "";
}

std::string describe(int index)
{
    return "'" + textOf(SDL_JoystickNameForIndex(index)) + "' at '" + textOf(SDL_JoystickPathForIndex(index)) + "'";
}

std::string guidText(const SDL_JoystickGUID& guid)
{
    char text[33];
    SDL_JoystickGetGUIDString(guid, text, sizeof(text));
    return text;
}

DeviceIdentity identify(SDL_GameController* controller)
{
    const DevicePlace place = DevicePlace::find(textOf(SDL_GameControllerPath(controller)));
    const std::string serial = textOf(SDL_GameControllerGetSerial(controller));
    return {guidText(SDL_JoystickGetGUID(SDL_GameControllerGetJoystick(controller))),
            serial.empty() ? place._serial : serial, place._port, textOf(SDL_GameControllerName(controller))};
}

/// Whether the device has reported the position of the axis.
bool isKnown(SDL_GameController* controller, SDL_GameControllerAxis axis)
{
    const auto bind = SDL_GameControllerGetBindForAxis(controller, axis);
    Sint16 initial = 0;
    return bind.bindType != SDL_CONTROLLER_BINDTYPE_AXIS ||
           SDL_JoystickGetAxisInitialState(SDL_GameControllerGetJoystick(controller), bind.value.axis, &initial);
}

/// Both ends are reached exactly. The vertical axes of SDL point down.
float scaleAxis(std::size_t axis, Sint16 position)
{
    const float scaled = static_cast<float>(position) / (position < 0 ? 32768.0F : 32767.0F);
    return (axis == LeftY || axis == RightY) && position != 0 ? -scaled : scaled;
}

InputChange axisChange(int device, std::size_t axis, Sint16 position)
{
    return {device, InputKind::Axis, axis, {scaleAxis(axis, position), 0.0F, 0.0F}};
}

InputChange buttonChange(int device, std::size_t button, bool down)
{
    return {device, InputKind::Button, button, {down ? 1.0F : 0.0F, 0.0F, 0.0F}};
}

/// The state of everything that is not known to be at rest.
void readState(SDL_GameController* controller, int device, std::vector<InputChange>& changes)
{
    for (std::size_t i = 0; i < AxisCount; ++i) {
        const auto axis = static_cast<SDL_GameControllerAxis>(i);
        if (isKnown(controller, axis))
            changes.push_back(axisChange(device, i, SDL_GameControllerGetAxis(controller, axis)));
    }
    for (std::size_t i = 0; i < ButtonCount; ++i)
        if (SDL_GameControllerGetButton(controller, static_cast<SDL_GameControllerButton>(i)))
            changes.push_back(buttonChange(device, i, true));
}

std::optional<InputChange> readAxis(const SDL_ControllerAxisEvent& event)
{
    if (event.axis >= AxisCount)
        return std::nullopt;
    return axisChange(event.which, event.axis, event.value);
}

std::optional<InputChange> readButton(const SDL_ControllerButtonEvent& event)
{
    if (event.button >= ButtonCount)
        return std::nullopt;
    return buttonChange(event.which, event.button, event.state == SDL_PRESSED);
}

std::optional<InputChange> readSensor(const SDL_ControllerSensorEvent& event)
{
    const auto* const sensor = std::find(std::begin(sensors), std::end(sensors), event.sensor);
    if (sensor == std::end(sensors))
        return std::nullopt;
    return InputChange{event.which,
                       InputKind::Motion,
                       static_cast<std::size_t>(sensor - sensors),
                       {event.data[0], event.data[1], event.data[2]}};
}

std::optional<InputChange> readChange(const SDL_Event& event)
{
    switch (event.type) {
    case SDL_CONTROLLERAXISMOTION:
        return readAxis(event.caxis);
    case SDL_CONTROLLERBUTTONDOWN:
    case SDL_CONTROLLERBUTTONUP:
        return readButton(event.cbutton);
    case SDL_CONTROLLERSENSORUPDATE:
        return readSensor(event.csensor);
    default: // the same again, as of a joystick
        return std::nullopt;
    }
}

} // namespace

SdlDevices::~SdlDevices()
{
    close();
}

void SdlDevices::open()
{
    // Signals are the program's business, and so is which window is in front.
    SDL_SetHint(SDL_HINT_NO_SIGNAL_HANDLERS, "1");
    SDL_SetHint(SDL_HINT_JOYSTICK_ALLOW_BACKGROUND_EVENTS, "1");
    SDL_SetMainReady();
    if (SDL_InitSubSystem(subsystems) != 0)
        throw std::runtime_error("SDL does not start: " + textOf(SDL_GetError()));
    _isOpen = true;
    _listStale = true;
}

void SdlDevices::close()
{
    _handles.clear();
    if (!std::exchange(_isOpen, false))
        return;
    SDL_QuitSubSystem(subsystems);
    SDL_TLSCleanup(); // what SDL keeps for each thread that calls it and that it did not start
}

DeviceNews SdlDevices::poll()
{
    DeviceNews news;
    SDL_JoystickUpdate(); // and not SDL_PumpEvents(), which belongs to the thread that has the windows
    SDL_Event events[maxEventsAtOnce];
    int count = 0;
    do {
        count = SDL_PeepEvents(events, maxEventsAtOnce, SDL_GETEVENT, SDL_JOYAXISMOTION, SDL_CONTROLLERSENSORUPDATE);
        for (int i = 0; i < count; ++i)
            read(events[i], news);
    } while (count == static_cast<int>(maxEventsAtOnce));
    if (std::exchange(_listStale, false))
        list(news);
    return news;
}

void SdlDevices::read(const SDL_Event& event, DeviceNews& news)
{
    if (event.type == SDL_JOYDEVICEADDED) {
        _listStale = true; // the index in the event may be another device's by now
    } else if (event.type == SDL_JOYDEVICEREMOVED) {
        _handles.erase(event.jdevice.which);
        news._left.push_back(event.jdevice.which);
    } else if (const auto change = readChange(event)) {
        news._changes.push_back(*change);
    }
}

void SdlDevices::list(DeviceNews& news)
{
    listArrived(news);
    if (news._arrived.empty())
        return;
    // There is no event for what is held down already.
    SDL_JoystickUpdate();
    for (const Arrival& arrival : news._arrived)
        readState(_handles.at(arrival._device).get(), arrival._device, news._changes);
}

void SdlDevices::listArrived(DeviceNews& news)
{
    const IndicesStay guard;
    for (int index = 0; index < SDL_NumJoysticks(); ++index) {
        const SDL_JoystickID device = SDL_JoystickGetDeviceInstanceID(index);
        if (device < 0 || _handles.contains(device))
            continue;
        if (auto arrival = openAt(index, device))
            news._arrived.push_back(std::move(*arrival));
    }
}

std::optional<Arrival> SdlDevices::openAt(int index, SDL_JoystickID device)
{
    Handle& handle = _handles[device];
    if (!SDL_IsGameController(index)) {
        report(osg::LogWarning,
               "Controller: " + describe(index) + " has no known mapping and is ignored; give one in " +
                   "SDL_GAMECONTROLLERCONFIG, with guid " + guidText(SDL_JoystickGetDeviceGUID(index)));
        return std::nullopt;
    }
    handle.reset(SDL_GameControllerOpen(index));
    if (!handle) {
        report(osg::LogWarning, "Controller: cannot open " + describe(index) + ": " + textOf(SDL_GetError()));
        return std::nullopt;
    }
    for (const SDL_SensorType sensor : sensors)
        if (SDL_GameControllerHasSensor(handle.get(), sensor))
            SDL_GameControllerSetSensorEnabled(handle.get(), sensor, SDL_TRUE);
    return Arrival{device, identify(handle.get())};
}

bool SdlDevices::rumble(int device, const Rumble& rumble)
{
    const auto found = _handles.find(device);
    if (found == _handles.end() || !found->second)
        return false;
    const auto strength = [](float level) { return static_cast<Uint16>(std::lround(level * 65535.0F)); };
    const auto milliseconds = static_cast<Uint32>(std::lround(rumble._seconds * 1000.0));
    return SDL_GameControllerRumble(found->second.get(), strength(rumble._slow), strength(rumble._fast),
                                    milliseconds) == 0;
}

} // namespace Trovio::Nodes
