#pragma once

#include "nodes/controller/ControllerDevices.h"
#include "nodes/controller/DeviceFilter.h"
#include "trovio/Time.h"
#include <list>
#include <map>
#include <memory>

namespace Trovio::Nodes {

/// A node that uses a controller, or waits for one.
/// Threads: called by the broker only, on its thread and under the hub's lock; must not call it back.
class ControllerUser {
public:
    /// Does not change while it is attached.
    virtual const DeviceFilter& getFilter() const = 0;

    virtual void deviceTaken(const DeviceIdentity& device, const ControllerState& state, const Time& now) = 0;
    virtual void inputChanged(const InputChange& change, const Time& now) = 0;
    /// After the last change of a poll.
    virtual void pollEnded(const Time& now) = 0;
    /// There is no device, or none any more. Called again when the reason changes.
    virtual void deviceMissing(const std::string& reason, const Time& now) = 0;

    /// What the motors are to do now; nothing if they are to go on as they are.
    virtual std::optional<Rumble> takeRumble() = 0;
    virtual void rumbleDone(bool accepted) = 0;

    /// There was no memory for what controllers sent: the next poll opens them anew, and all users get theirs again.
    virtual void pollFailed() noexcept = 0;

protected:
    ~ControllerUser() = default;
};

/// Gives each user one controller, no controller to two, and passes on what happens between them.
/// Who gets which: first those whose filter says more, then those who had the same device before, then those who never
/// had one, then by order of attaching. A user whose filter says less gives a device up again, so that the outcome does
/// not depend on who came first.
/// Threads: one at a time. Devices are used in poll() and close() only.
class DeviceBroker {
public:
    explicit DeviceBroker(std::unique_ptr<ControllerDevices> devices) : _devices(std::move(devices)) {}

    void attach(ControllerUser& user);
    /// Its device is free again; the motors stand still from the next poll on.
    void detach(ControllerUser& user);
    bool isUsed() const { return !_users.empty(); }

    /// Tells everybody what happened, as having happened now. Returns after how many seconds to poll again. Without
    /// memory it does what it can, and begins anew the next time.
    double poll(const Time& now);

    /// Closes the devices. Everybody misses theirs for that reason.
    void close(const std::string& reason, const Time& now);

private:
    struct User;
    struct Device {
        DeviceIdentity _identity;
        ControllerState _state;
        User* _owner = nullptr;
    };
    using Devices = std::map<int, Device>; // by number, and so in order of arrival
    struct User {
        ControllerUser* _user;
        Devices::value_type* _device = nullptr;
        std::optional<DeviceIdentity> _last; // of the device that it has or had
    };

    double pollDevices(const Time& now);
    bool open(const Time& now);
    void take(DeviceNews news, const Time& now);
    void takeChange(const InputChange& change, const Time& now);
    void forget(int device);
    void assign(const Time& now);
    bool assignBest(const Time& now);
    void give(User& user, Devices::value_type& device, const Time& now);
    void release(User& user) noexcept;
    void silence();
    void exchangeRumble();
    std::string explainMissing(const User& user) const;

    /// The user's priority for the device; nothing if it does not want it, or cannot get it.
    static std::optional<int> claim(const User& user, const Device& device);

    const std::unique_ptr<ControllerDevices> _devices;
    std::list<User> _users;
    Devices _present;
    std::vector<int> _toSilence; // were given up, maybe with their motors on
    bool _open = false;
    bool _changed = false;    // users or devices came or went since devices were last assigned
    bool _incomplete = false; // the last poll did not come to its end
};

} // namespace Trovio::Nodes
