#pragma once

#include "base/Mutex.h"
#include "nodes/controller/DeviceBroker.h"
#include "nodes/shared/Worker.h"

namespace Trovio::Nodes {

/// The one thread that polls all controllers of this process, while a node uses one or waits for one.
/// Threads: any.
class ControllerHub {
public:
    ControllerHub(Clock& clock, std::unique_ptr<ControllerDevices> devices);
    /// All users must have been detached.
    ~ControllerHub();

    /// That of SDL, which has one state for the whole process.
    static ControllerHub& system();

    Clock& getClock() const { return _clock; }

    /// The user is called from now on, on the hub's thread. Throws std::system_error where there can be no more
    /// threads.
    void attach(ControllerUser& user) OSTREL_EXCLUDES(_usersLock, _lock);
    /// Afterwards the user is not called any more. Waits for the poll that is under way.
    void detach(ControllerUser& user) OSTREL_EXCLUDES(_usersLock, _lock);

    /// Polls at once, for there is something to rumble. Never blocks; under any lock.
    void wake() { _worker.wake(); }

private:
    void run();
    double poll() OSTREL_EXCLUDES(_lock);
    void close(const std::string& reason) OSTREL_EXCLUDES(_lock);

    Clock& _clock;

    // The users lock is held while the thread starts and ends, so that it does so in step with its users. It is
    // unranked: only start() and stop() of nodes take it, before every ranked one. The other one is held around a whole
    // poll, pushes included, so that detach() can promise what it does: what a push reaches only queues and wakes, and
    // never comes back here but for wake().
    Ostrel::Mutex _usersLock OSTREL_ACQUIRED_BEFORE(_lock);
    Ostrel::Mutex _lock{Ostrel::LockRank::NodePush};
    DeviceBroker _broker OSTREL_GUARDED_BY(_lock);
    bool _running OSTREL_GUARDED_BY(_usersLock) = false;
    Worker _worker;
};

} // namespace Trovio::Nodes
