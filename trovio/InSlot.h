#pragma once

#include "trovio/BasicInSlot.h"
#include "trovio/Data.h"
#include "trovio/Exception.h"
#include "trovio/Hooks.h"
#include "trovio/Peers.h"
#include "trovio/Taking.h"
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
    explicit InSlot(const std::string& name);
    ~InSlot() override;

    std::string getTypeName() const override { return TypeName<T>::getName(); }
    const std::type_info& getTypeID() const override { return typeid(T); }
    bool empty() const override OSTREL_EXCLUDES(_dataLock);

    void connect(BasicOutSlot* outSlot) override;
    void disconnect(BasicOutSlot* outSlot) override;

    /// The newest record without taking it, read or not. Never waits.
    /// Throws InterruptedException, once, after an interrupt, and what the copy throws.
    virtual Data<T> top() OSTREL_EXCLUDES(_dataLock);

    /// Takes the record, and waits until there is one. Throws InterruptedException, once, after an interrupt, and what
    /// the copy throws; the record then stays.
    virtual Data<T> pop() OSTREL_EXCLUDES(_dataLock);

    /// Throws nothing: a record whose copy fails, for want of memory, is counted as not stored, and all stays as it
    /// was.
    virtual void push(const Data<T>& data) OSTREL_EXCLUDES(_dataLock);

protected:
    /// down(), and then the data lock.
    void waitAndLock() OSTREL_ACQUIRE(_dataLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS { Hooks::downAndLock(*this); }
    /// Throws for a pending interrupt, without the data lock.
    void throwIfInterrupted() OSTREL_REQUIRES(_dataLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS;

    /// Copies a record to where it is kept. False where that fails; the record is counted then.
    bool keep(const Data<T>& data, Data<T>& place) OSTREL_REQUIRES(_dataLock);
    /// A copy for a reader, who may have taken a token for it. What the copy throws is thrown without the data lock.
    Data<T> handOut(const Data<T>& data, bool tokenTaken) OSTREL_REQUIRES(_dataLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS;
    /// For who has only looked: nothing was stored, so nobody has to be woken.
    void unlockUnchanged() const OSTREL_RELEASE(_dataLock) OSTREL_NO_THREAD_SAFETY_ANALYSIS
    {
        Hooks::unlockUnchanged(*this);
    }

private:
    friend class Wiring<T>;
    friend class Taking<T>;

    Peers<OutSlot<T>> _outSlots OSTREL_GUARDED_BY(_dataLock); // changed under _listenersLock too
    Data<T> _data OSTREL_GUARDED_BY(_dataLock);
    bool _empty OSTREL_GUARDED_BY(_dataLock) = true;
};

template <class T>
InSlot<T>::InSlot(const std::string& name) : BasicInSlot(name)
{
}

template <class T>
InSlot<T>::~InSlot() = default;

template <class T>
bool InSlot<T>::empty() const
{
    this->lock();
    const bool empty = _empty;
    this->unlockUnchanged();
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
bool InSlot<T>::keep(const Data<T>& data, Data<T>& place)
{
    try {
        if (&data != &place)
            place.assign(data);
        return true;
    } catch (...) {
        Hooks::notStored(*this);
        return false;
    }
}

template <class T>
Data<T> InSlot<T>::handOut(const Data<T>& data, bool tokenTaken)
{
    try {
        return data;
    } catch (...) {
        if (tokenTaken)
            Hooks::putBack(*this);
        this->unlock();
        throw;
    }
}

template <class T>
Data<T> InSlot<T>::top()
{
    this->lock();
    throwIfInterrupted();
    const Data<T> data = handOut(_data, false);
    this->unlock();
    return data;
}

template <class T>
Data<T> InSlot<T>::pop()
{
    return Taking<T>::waitAndTake(*this);
}

template <class T>
void InSlot<T>::push(const Data<T>& data)
{
    this->lock();
    if (!keep(data, _data)) {
        this->unlock();
        return;
    }
    Hooks::stored(*this, data);
    if (_empty) {
        _empty = false;
        this->up();
    } else {
        Hooks::overwritten(*this);
    }
    this->unlock();
    this->newData();
}

} // namespace Trovio

#include "trovio/Wiring.h"
