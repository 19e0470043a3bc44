#pragma once

#include "base/Mutex.h"
#include "nodes/controller/ControllerDevices.h"
#include <condition_variable>
#include <new>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Trovio::Nodes {

/// Controllers that a test plugs in and moves by hand. Writes down what it is asked to do.
/// Threads: any.
class FakeDevices final : public ControllerDevices {
public:
    void open() override
    {
        note("open");
        if (!_problem.empty())
            throw std::runtime_error(_problem);
    }
    void close() override { note("close"); }
    DeviceNews poll() override
    {
        const Ostrel::LockGuard guard(_lock);
        ++_polls;
        _polled.notify_all();
        const DeviceNews news = std::exchange(_news, {});
        if (std::exchange(_isWithoutMemory, false))
            throw std::bad_alloc();
        return news;
    }
    bool rumble(int device, const Rumble& rumble) override
    {
        std::ostringstream call;
        call << "rumble " << device << " " << rumble._slow << " " << rumble._fast << " " << rumble._seconds;
        note(call.str());
        return true;
    }

    std::string _problem; // of opening; set it before there is a thread

    /// The next poll loses what it would have shown.
    void takeMemory()
    {
        const Ostrel::LockGuard guard(_lock);
        _isWithoutMemory = true;
    }

    /// The next poll shows it. The number is a new one each time.
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

    std::vector<std::string> takeCalls()
    {
        const Ostrel::LockGuard guard(_lock);
        return std::exchange(_calls, {});
    }

    /// Has the hub poll until all that was done before is through: when the second poll begins, the first has ended.
    template <class Hub>
    void settle(Hub& hub)
    {
        for (int poll = 0; poll < 2; ++poll) {
            std::unique_lock guard(_lock);
            hub.wake();
            _polled.wait(guard, [wanted = _polls + 1, this] { return _polls >= wanted; });
        }
    }

private:
    void note(const std::string& call)
    {
        const Ostrel::LockGuard guard(_lock);
        _calls.push_back(call);
    }

    Ostrel::Mutex _lock;
    std::condition_variable_any _polled;
    DeviceNews _news;
    std::vector<std::string> _calls;
    int _lastDevice = 0;
    bool _isWithoutMemory = false;
    std::size_t _polls = 0;
};

} // namespace Trovio::Nodes
