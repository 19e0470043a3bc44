#include "nodes/controller/DeviceBroker.h"

#include "nodes/shared/MemoryShortage.h"
#include <algorithm>
#include <stdexcept>
#include <utility>

namespace Trovio::Nodes {

namespace {

// Seconds from one poll to the next, as devices do not wake a thread: while one is in use about as often as the fastest
// reports come, otherwise to see whether one was plugged in.
constexpr double inUse = 0.002;
constexpr double waiting = 0.1;
constexpr double untilRetry = 1.0;

} // namespace

void DeviceBroker::attach(ControllerUser& user)
{
    _users.push_back({&user, nullptr, {}});
    _changed = true;
}

void DeviceBroker::detach(ControllerUser& user)
{
    const auto entry =
        std::find_if(_users.begin(), _users.end(), [&user](const User& other) { return other._user == &user; });
    if (entry == _users.end())
        return;
    release(*entry);
    _users.erase(entry);
    _changed = true;
}

double DeviceBroker::poll(const Time& now)
try {
    // What came in then is lost, such as a device that arrived.
    if (std::exchange(_incomplete, true))
        close("there was no memory for what controllers sent; they are opened again", now);
    const double next = pollDevices(now);
    _incomplete = false;
    return next;
} catch (const std::bad_alloc&) {
    for (const User& user : _users)
        user._user->pollFailed();
    return MemoryShortage::Pause;
}

double DeviceBroker::pollDevices(const Time& now)
{
    if (!_open && !open(now))
        return untilRetry;
    take(_devices->poll(), now);
    if (std::exchange(_changed, false))
        assign(now);
    exchangeRumble();
    for (const User& user : _users)
        user._user->pollEnded(now);
    const bool idle = std::none_of(_users.begin(), _users.end(), [](const User& user) { return user._device; });
    return idle ? waiting : inUse;
}

bool DeviceBroker::open(const Time& now)
{
    try {
        _devices->open();
        _open = true;
        _changed = true;
    } catch (const std::runtime_error& problem) {
        close(problem.what(), now);
    }
    return _open;
}

void DeviceBroker::close(const std::string& reason, const Time& now)
{
    for (User& user : _users) {
        release(user);
        user._user->deviceMissing(reason, now);
    }
    _present.clear();
    if (!std::exchange(_open, false))
        return;
    silence();
    _devices->close();
}

void DeviceBroker::take(DeviceNews news, const Time& now)
{
    _changed = _changed || !news._arrived.empty() || !news._left.empty();
    for (Arrival& arrival : news._arrived)
        _present.try_emplace(arrival._device, Device{std::move(arrival._identity), {}});
    for (const InputChange& change : news._changes)
        takeChange(change, now);
    for (const int device : news._left)
        forget(device);
}

void DeviceBroker::takeChange(const InputChange& change, const Time& now)
{
    const auto found = _present.find(change._device);
    if (found == _present.end())
        return;
    Device& device = found->second;
    device._state.apply(change);
    if (device._owner)
        device._owner->_user->inputChanged(change, now);
}

void DeviceBroker::forget(int device)
{
    const auto found = _present.find(device);
    if (found == _present.end())
        return;
    if (User* owner = found->second._owner)
        owner->_device = nullptr;
    _present.erase(found);
}

void DeviceBroker::assign(const Time& now)
{
    while (assignBest(now)) {
    }
    for (const User& user : _users)
        if (!user._device)
            user._user->deviceMissing(explainMissing(user), now);
}

bool DeviceBroker::assignBest(const Time& now)
{
    std::optional<int> best;
    std::pair<User*, Devices::value_type*> match;
    for (User& user : _users) {
        for (auto& device : _present) {
            const auto right = claim(user, device.second);
            if (right && (!best || *right > *best)) {
                best = right;
                match = {&user, &device};
            }
        }
    }
    if (best)
        give(*match.first, *match.second, now);
    return best.has_value();
}

std::optional<int> DeviceBroker::claim(const User& user, const Device& device)
{
    const DeviceFilter& filter = user._user->getFilter();
    if (user._device || !filter.admits(device._identity))
        return std::nullopt;
    if (device._owner && device._owner->_user->getFilter().getPrecision() >= filter.getPrecision())
        return std::nullopt;
    const bool hadIt = user._last && user._last->isSameAs(device._identity);
    return filter.getPrecision() * 4 + (hadIt ? 2 : 0) + (user._last ? 0 : 1);
}

void DeviceBroker::give(User& user, Devices::value_type& device, const Time& now)
{
    Device& given = device.second;
    if (given._owner)
        release(*given._owner);
    given._owner = &user;
    user._device = &device;
    user._last = given._identity;
    user._user->deviceTaken(given._identity, given._state, now);
}

void DeviceBroker::release(User& user) noexcept
{
    if (!user._device)
        return;
    try {
        _toSilence.push_back(user._device->first);
    } catch (const std::bad_alloc&) {
        // Its motors run for as long as they were told to.
    }
    user._device->second._owner = nullptr;
    user._device = nullptr;
}

void DeviceBroker::silence()
{
    for (const int device : std::exchange(_toSilence, {}))
        _devices->rumble(device, Rumble());
}

void DeviceBroker::exchangeRumble()
{
    silence();
    for (const User& user : _users)
        if (const auto rumble = user._user->takeRumble())
            user._user->rumbleDone(user._device && _devices->rumble(user._device->first, *rumble));
}

std::string DeviceBroker::explainMissing(const User& user) const
{
    const std::string wanted = user._user->getFilter().describe();
    std::string text = "there is no free controller" + (wanted.empty() ? "" : " " + wanted);
    if (user._last)
        text += ", and the one that was used is " + user._last->describe();
    if (_present.empty())
        return text + "; none is plugged in";
    text += "; plugged in:";
    for (const auto& [number, device] : _present)
        text += " [" + device._identity.describe() + (device._owner ? ", in use]" : "]");
    return text;
}

} // namespace Trovio::Nodes
