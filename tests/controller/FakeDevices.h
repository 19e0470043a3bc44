#pragma once

#include "base/Mutex.h"
#include "nodes/controller/ControllerDevices.h"
#include <condition_variable>
#include <stdexcept>
#include <string>
#include <utility>

namespace Trovio::Nodes {

/// Controllers that a test plugs in and moves by hand. Writes down what it is asked to do.
/// Threads: any.
class FakeDevices final : public ControllerDevices {
public:
    void open() override
    {
        const Ostrel::LockGuard guard(_lock);
        _calls.push_back("open");
        if (!_problem.empty())
            throw std::runtime_error(std::exchange(_problem, ""));
    }
    void close() override { note("close"); }

    DeviceNews look() override
    {
        const Ostrel::LockGuard guard(_lock);
        ++_looks;
        _looked.notify_all();
        return std::exchange(_news, {});
    }

    bool rumble(int device, const Rumble& rumble) override
    {
        char text[64];
        std::snprintf(text, sizeof(text), "rumble %d %g %g %g", device, double(rumble._slow), double(rumble._fast),
                      rumble._seconds);
        note(text);
        return true;
    }

    /// The next look shows it. The number is a new one each time.
    int plugIn(const DeviceIdentity& identity)
    {
        const Ostrel::LockGuard guard(_lock);
        _news._arrived.push_back({++_lastDevice, identity});
        return _lastDevice;
    }
    void unplug(int device)
    {
        const Ostrel::LockGuard guard(_lock);
        _news._left.push_back(device);
    }
    void move(int device, InputKind kind, std::size_t index, const Vec3<float>& values)
    {
        const Ostrel::LockGuard guard(_lock);
        _news._changes.push_back({device, kind, index, values});
    }
    void failNextOpen(const std::string& problem)
    {
        const Ostrel::LockGuard guard(_lock);
        _problem = problem;
    }

    std::vector<std::string> takeCalls()
    {
        const Ostrel::LockGuard guard(_lock);
        return std::exchange(_calls, {});
    }

    /// Has the hub look until everything that was done before this call is through.
    template <class Hub>
    void settle(Hub& hub)
    {
        waitForLooks(hub, 1);
        waitForLooks(hub, 1); // when the second one begins, the first one has ended
    }

private:
    template <class Hub>
    void waitForLooks(Hub& hub, std::size_t count)
    {
        std::unique_lock guard(_lock);
        const std::size_t wanted = _looks + count;
        hub.wake();
        _looked.wait(guard, [&] { return _looks >= wanted; });
    }

    void note(std::string call)
    {
        const Ostrel::LockGuard guard(_lock);
        _calls.push_back(std::move(call));
    }

    Ostrel::Mutex _lock;
    std::condition_variable_any _looked;
    DeviceNews _news;
    std::vector<std::string> _calls;
    std::string _problem;
    int _lastDevice = 0;
    std::size_t _looks = 0;
};

} // namespace Trovio::Nodes
