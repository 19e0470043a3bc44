#pragma once

#include "nodes/controller/ControllerDevices.h"
#include <SDL_events.h>
#include <SDL_gamecontroller.h>
#include <map>
#include <memory>
#include <optional>

namespace Trovio::Nodes {

/// The game controllers that SDL knows. All of them are open while this is.
/// SDL's state is one for the whole process and counts who uses it, so a program with SDL of its own goes on
/// undisturbed, but for the events of joysticks and controllers: those are taken from the queue.
/// Threads: as ControllerDevices says; the others of the program may use SDL meanwhile.
class SdlDevices final : public ControllerDevices {
public:
    SdlDevices() = default;
    ~SdlDevices() override;

    void open() override;
    void close() override;
    DeviceNews poll() override;
    bool rumble(int device, const Rumble& rumble) override;

private:
    struct Closer {
        void operator()(SDL_GameController* controller) const { SDL_GameControllerClose(controller); }
    };
    using Handle = std::unique_ptr<SDL_GameController, Closer>;

    void read(const SDL_Event& event, DeviceNews& news);
    void list(DeviceNews& news);
    void listArrived(DeviceNews& news);
    std::optional<Arrival> openAt(int index, SDL_JoystickID device);

    std::map<SDL_JoystickID, Handle> _handles; // null for what cannot be used as a controller
    bool _isOpen = false;
    bool _listStale = false; // something was plugged in since it was read
};

} // namespace Trovio::Nodes
