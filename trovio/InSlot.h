#pragma once

#include "trovio/BasicInSlot.h"
#include "trovio/Data.h"
#include "trovio/Exception.h"
#include "trovio/Hooks.h"
#include "trovio/Peers.h"
#include "trovio/TypeName.h"

namespace Trovio {

template <class T>
class OutSlot;
template <class T>
class Wiring;

/// Receives records and keeps the newest: a record that nobody took in time is overwritten.
/// Ownership: owns a copy of the record; a shared value stays with its pool. Does not own the out-slots it refers to,
///            and does not disconnect when it is destroyed: whoever owns it disconnects it first.
/// Threads:   any thread, any operation. A reader may sleep in pop(); interrupt() releases it.
template <class T>
class InSlot : public BasicInSlot {
public:
    explicit InSlot(const std::string& name) : BasicInSlot(name) {}
    ~InSlot() override = default;

    std::string getTypeName() const override { return TypeName<T>::getName(); }
    const std::type_info& getTypeID() const override { return typeid(T); }
    bool empty() const override OSTREL_EXCLUDES(_dataLock);

    void connect(BasicOutSlot* outSlot) override;
    void disconnect(BasicOutSlot* outSlot) override;

    /// The newest record without taking it, read or not. Never waits.
    /// Throws InterruptedException, once, after an interrupt.
    virtual Data<T> top() OSTREL_EXCLUDES(_dataLock);

    /// Takes the record, and waits until there is one. Throws InterruptedException, once, after an interrupt; the
    /// record then stays.
    virtual Data<T> pop() OSTREL_EXCLUDES(_dataLock);

    virtual void push(const Data<T>& data) OSTREL_EXCLUDES(_dataLock);

protected:
    /// down(), and then the data lock.
    void waitAndLock() OSTREL_ACQUIRE(_dataLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS { Hooks::downAndLock(*this); }
    /// Throws for a pending interrupt, without the data lock.
    void throwIfInterrupted() OSTREL_REQUIRES(_dataLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS;

private:
    friend class Wiring<T>;

    Peers<OutSlot<T>> _outSlots OSTREL_GUARDED_BY(_dataLock); // changed under _listenersLock too
    Data<T> _data OSTREL_GUARDED_BY(_dataLock);
    bool _empty OSTREL_GUARDED_BY(_dataLock) = true;
};

template <class T>
bool InSlot<T>::empty() const
{
    this->lock();
    const bool empty = _empty;
    this->Slot::unlock(); // nothing was stored, so nobody has to be woken
    return empty;
}

template <class T>
void InSlot<T>::throwIfInterrupted()
{
    if (!_interrupted)
        return;
    _interrupted = false;
    this->unlock();
    throw InterruptedException();
}

template <class T>
Data<T> InSlot<T>::top()
{
    this->lock();
    throwIfInterrupted();
    const Data<T> data = _data;
    this->unlock();
    return data;
}

template <class T>
Data<T> InSlot<T>::pop()
{
    for (;;) {
        waitAndLock();
        throwIfInterrupted();
        if (!_empty)
            break;
        // The token of an interrupt that top() has taken meanwhile.
        this->unlock();
    }
    const Data<T> data = _data;
    _empty = true;
    Hooks::taken(*this, data);
    this->unlock();
    return data;
}

template <class T>
void InSlot<T>::push(const Data<T>& data)
{
    this->lock();
    Hooks::stored(*this, data);
    if (_empty) {
        _empty = false;
        this->up();
    } else {
        Hooks::overwritten(*this);
    }
    if (&data != &_data)
        _data = data;
    this->unlock();
    this->newData();
}

} // namespace Trovio

#include "trovio/Wiring.h"
