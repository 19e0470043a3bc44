#include "nodes/controller/ControllerHub.h"

#include "nodes/controller/SdlDevices.h"

namespace Trovio::Nodes {

ControllerHub& ControllerHub::system()
{
    static ControllerHub hub(Clock::system(), std::make_unique<SdlDevices>());
    return hub;
}

ControllerHub::ControllerHub(Clock& clock, std::unique_ptr<ControllerDevices> devices)
    : _clock(clock), _broker(std::move(devices)), _worker(clock)
{
}

ControllerHub::~ControllerHub() = default;

void ControllerHub::attach(ControllerUser& user)
{
    const Ostrel::LockGuard users(_usersLock);
    {
        const Ostrel::LockGuard guard(_lock);
        _broker.attach(user);
    }
    if (_running) {
        _worker.wake();
        return;
    }
    try {
        _worker.start(
            "controllers", [this] { run(); }, [this](const std::string& problem) { close("ended: " + problem); });
        _running = true;
    } catch (...) {
        const Ostrel::LockGuard guard(_lock);
        _broker.detach(user);
        throw;
    }
}

void ControllerHub::detach(ControllerUser& user)
{
    const Ostrel::LockGuard users(_usersLock);
    {
        const Ostrel::LockGuard guard(_lock);
        _broker.detach(user);
        _running = _broker.isUsed();
    }
    if (_running)
        _worker.wake(); // somebody else may want the device
    else
        _worker.stop();
}

void ControllerHub::run()
{
    double next = 0.0;
    do
        next = _clock.now() + poll();
    while (_worker.wait(next));
    close("");
}

double ControllerHub::poll()
{
    const Ostrel::LockGuard guard(_lock);
    return _broker.poll(_clock.wallTime());
}

void ControllerHub::close(const std::string& reason)
{
    const Ostrel::LockGuard guard(_lock);
    _broker.close(reason, _clock.wallTime());
}

} // namespace Trovio::Nodes
