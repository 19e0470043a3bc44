#pragma once

#include "trovio/InSlot.h"
#include "trovio/SlotTypeList.h"
#include <vector>

namespace Trovio {

/// Receives records and keeps the newest maxSize of them in order of arrival; a full ring drops its oldest.
/// Invariant: _count records are unread, from _readPos on; nothing grows or shrinks after construction.
/// A ring of no records is not refused, and must not be pushed into.
template <class T>
class BufferedInSlot : public InSlot<T> {
public:
    BufferedInSlot(const std::string& name, unsigned int maxSize);
    ~BufferedInSlot() override;

    bool empty() const override OSTREL_EXCLUDES(this->_dataLock);

    /// The oldest unread record without taking it; whatever stands at the read position if there is none.
    Data<T> top() override OSTREL_EXCLUDES(this->_dataLock);
    Data<T> pop() override OSTREL_EXCLUDES(this->_dataLock);
    void push(const Data<T>& data) override OSTREL_EXCLUDES(this->_dataLock);

private:
    friend class Taking<T>;
    using Position = typename std::vector<Data<T>>::iterator;

    void advance(Position& position) OSTREL_REQUIRES(this->_dataLock)
    {
        if (++position == _buffer.end())
            position = _buffer.begin();
    }

    std::vector<Data<T>> _buffer OSTREL_GUARDED_BY(this->_dataLock);
    Position _readPos OSTREL_GUARDED_BY(this->_dataLock);  // of the oldest unread record
    Position _writePos OSTREL_GUARDED_BY(this->_dataLock); // where the next record goes
    unsigned int _count OSTREL_GUARDED_BY(this->_dataLock) = 0;
};

template <class T>
BufferedInSlot<T>::BufferedInSlot(const std::string& name, unsigned int maxSize)
    : InSlot<T>(name), _buffer(maxSize), _readPos(_buffer.begin()), _writePos(_buffer.begin())
{
    Hooks::setCapacity(*this, maxSize);
}

template <class T>
BufferedInSlot<T>::~BufferedInSlot() = default;

template <class T>
bool BufferedInSlot<T>::empty() const
{
    this->lock();
    const bool empty = _count == 0;
    this->unlockUnchanged();
    return empty;
}

template <class T>
Data<T> BufferedInSlot<T>::top()
{
    this->lock();
    this->throwIfInterrupted();
    const Data<T> data = this->handOut(*_readPos, false);
    this->unlock();
    return data;
}

template <class T>
Data<T> BufferedInSlot<T>::pop()
{
    return Taking<T>::waitAndTake(*this);
}

template <class T>
void BufferedInSlot<T>::push(const Data<T>& data)
{
    this->lock();
    if (!this->keep(data, *_writePos)) {
        this->unlock();
        return;
    }
    Hooks::stored(*this, data);
    if (_writePos != _readPos || _count == 0) {
        ++_count;
        this->up();
    } else {
        advance(_readPos);
        Hooks::overwritten(*this);
    }
    advance(_writePos);
    this->unlock();
    this->newData();
}

#ifndef TROVIO_OWN_INSTANCES
#define TROVIO_EXTERN_BUFFERED(type, name) extern template class BufferedInSlot<type>;
TROVIO_SLOT_TYPES(TROVIO_EXTERN_BUFFERED)
#undef TROVIO_EXTERN_BUFFERED
#endif

} // namespace Trovio
