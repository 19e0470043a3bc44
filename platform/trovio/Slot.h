#pragma once

#include "base/Flag.h"
#include "base/Mutex.h"
#include <atomic>
#include <cstdint>
#include <string>
#include <typeinfo>

namespace Trovio {

class Slot;

/// Hears of a slot's data and activity, on whatever thread caused them.
/// A listener only queues and wakes: it never blocks, never pushes, and never takes the tree or the wiring lock,
/// for a first delivery reaches it while a connection is being made.
class SlotListener {
public:
    virtual void dataArrived(Slot&) {}
    virtual void activityChanged(Slot&, bool /*active*/) {}

protected:
    ~SlotListener() = default;
};

/// One end of a connection that carries records of one value type.
/// Ownership: whoever made a slot deletes it, after disconnecting it; peers and namespaces only refer to it.
/// Threads:   any thread, any operation, but for setListener().
class Slot {
public:
    enum class Direction { In, Out };

    virtual ~Slot() = default;
    virtual std::string getTypeName() const = 0;
    /// Slots connect only where these are equal.
    virtual const std::type_info& getTypeID() const = 0;
    virtual Direction getDirection() const = 0;

    /// The same as getDirection() says, without a virtual call.
    bool isInSlot() const { return _isInSlot; }

    /// False where certainly no unread record waits, always for an out-slot; asked without a lock: for those who look
    /// into thousands of slots in which nothing waits. A record is seen once its push has returned, as far as
    /// base/Flag.h promises.
    bool mayHoldRecord() const { return _mayHoldRecord.isSet(); }

    Slot(const Slot&) = delete;
    Slot& operator=(const Slot&) = delete;

    const std::string& getName() const { return _name; }

    /// Whether the slot has a connection, as far as its start and stop operations were told.
    bool isActive() const { return _active.load(std::memory_order_relaxed); }

    /// One listener a slot; null takes it away. Only while the slot has no connection.
    void setListener(SlotListener* listener) { _listener = listener; }

    void lock() const OSTREL_ACQUIRE(_dataLock) { _dataLock.lock(); }
    /// Releases the data lock and then wakes the readers that up() owes: one woken under the lock would only run into
    /// it.
    void unlock() const OSTREL_RELEASE(_dataLock)
    {
        if (_wakesOwed == 0) [[likely]]
            _dataLock.unlock();
        else
            unlockAndWake();
    }
    void listenersLock() const OSTREL_ACQUIRE(_listenersLock) { _listenersLock.lock(); }
    void listenersUnlock() const OSTREL_RELEASE(_listenersLock) { _listenersLock.unlock(); }

protected:
    Slot(const std::string& name, Direction direction, Ostrel::LockRank listenersRank, Ostrel::LockRank dataRank)
        : _dataLock(dataRank), _listenersLock(listenersRank), _isInSlot(direction == Direction::In), _name(name)
    {
    }

    void setActive(bool active)
    {
        _active.store(active, std::memory_order_relaxed);
        if (_listener)
            _listener->activityChanged(*this, active);
    }

    // Lock order: base/LockRank.h. In one slot listeners before data, between two slots out before in.
    // What each record needs stands in front, next to the table of virtuals.
    mutable Ostrel::Mutex _dataLock; // guards records, counts and connections
    SlotListener* _listener = nullptr;
    mutable Ostrel::Mutex _listenersLock OSTREL_ACQUIRED_BEFORE(_dataLock); // held around changes of the connections
    mutable std::uint32_t _wakesOwed OSTREL_GUARDED_BY(_dataLock) = 0;      // only an in-slot owes any
    mutable Ostrel::Flag _mayHoldRecord; // changes under _dataLock; only an in-slot sets it

private:
    void unlockAndWake() const OSTREL_RELEASE(_dataLock);

    const bool _isInSlot;
    std::atomic<bool> _active{false};
    const std::string _name;
};

} // namespace Trovio
