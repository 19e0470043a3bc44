#pragma once

#include "trovio/BasicOutSlot.h"
#include "trovio/Data.h"
#include "trovio/Peers.h"
#include "trovio/TypeName.h"

namespace Trovio {

template <class T>
class InSlot;
template <class T>
class Wiring;

/// Hands every record at once to each connected in-slot, and keeps the last one for those that connect later.
/// Ownership: owns a copy of the record; does not own the in-slots it refers to, and does not disconnect when it is
///            destroyed: whoever owns it disconnects it first.
/// Threads:   any thread, any operation. In-slots receive on the pushing thread, under this slot's data lock.
template <class T>
class OutSlot : public BasicOutSlot {
public:
    explicit OutSlot(const std::string& name);
    ~OutSlot() override;

    std::string getTypeName() const override { return TypeName<T>::getName(); }
    const std::type_info& getTypeID() const override { return typeid(T); }

    void connect(BasicInSlot* inSlot) override;
    void disconnect(BasicInSlot* inSlot) override;
    BasicInSlot* createMatchingInSlot() override;

    /// Passes the record on as it is, time stamp included. The slots that receive it must not throw. Where the copy
    /// that it keeps fails, it throws and has passed on nothing.
    virtual void push(const Data<T>& data) OSTREL_EXCLUDES(_dataLock);

private:
    friend class Wiring<T>;

    Peers<InSlot<T>> _inSlots OSTREL_GUARDED_BY(_dataLock); // changed under _listenersLock too
    Data<T> _data OSTREL_GUARDED_BY(_dataLock);             // the last record
};

template <class T>
OutSlot<T>::OutSlot(const std::string& name) : BasicOutSlot(name)
{
}

template <class T>
OutSlot<T>::~OutSlot() = default;

template <class T>
void OutSlot<T>::push(const Data<T>& data)
{
    this->lock();
    try {
        if (&data != &_data)
            _data.assign(data);
    } catch (...) {
        this->unlock();
        throw;
    }
    this->setHasValue(data.getTimeStamp());
    for (const auto& [inSlot, count] : _inSlots)
        inSlot->push(data);
    this->unlock();
}

} // namespace Trovio

#include "trovio/Wiring.h"
