#pragma once

#include "trovio/Cache.h"
#include <memory>
#include <utility>

namespace Trovio {

/// A handle on a pooled object that all its holders share: whoever writes through it writes for all of them.
/// Ownership: counts one reference; the pool owns the object.
/// Threads:   a handle belongs to one thread at a time; handles on one object may be used on different threads.
template <class T>
class SmartPtr {
public:
    using Object = T;

    SmartPtr() = default;
    SmartPtr(const SmartPtr& other) noexcept : _refCtr(other._refCtr), _cache(other._cache)
    {
        if (_refCtr)
            _refCtr->incrementReferenceCounter();
    }
    SmartPtr(SmartPtr&& other) noexcept
        : _refCtr(std::exchange(other._refCtr, nullptr)), _cache(std::exchange(other._cache, nullptr))
    {
    }
    ~SmartPtr() { decrementReferenceCounter(); }

    SmartPtr& operator=(const SmartPtr& other) noexcept
    {
        // The same object needs no count, and must not pass through zero and the pool.
        if (_refCtr != other._refCtr)
            SmartPtr(other).swap(*this);
        return *this;
    }
    SmartPtr& operator=(SmartPtr&& other) noexcept
    {
        swap(other);
        return *this;
    }

    void swap(SmartPtr& other) noexcept
    {
        std::swap(_refCtr, other._refCtr);
        std::swap(_cache, other._cache);
    }

    /// Binds the handle to an object that nobody else holds: the one that was freed last, with whatever it held, or a
    /// fresh one. Lets go of nothing: a handle that holds an object is emptied first, or its pool never gets that one
    /// back. When memory runs out the pool stays locked, so that nobody builds on a half-made pool.
    void acquire() OSTREL_NO_THREAD_SAFETY_ANALYSIS;

    /// Drops the handle's reference; the last one gives the object back to its pool, untouched. The handle keeps its
    /// pointers: only for whoever acquires anew with it right afterwards.
    void decrementReferenceCounter() noexcept OSTREL_NO_THREAD_SAFETY_ANALYSIS;

    /// Null if the handle is.
    const T* get() const { return _refCtr ? &_refCtr->getObject() : nullptr; }
    explicit operator bool() const { return _refCtr != nullptr; }

    const T& operator*() const { return _refCtr->getObject(); }
    const T* operator->() const { return &_refCtr->getObject(); }

    /// For writing: a null handle acquires an object first.
    T& operator*() { return object(); }
    T* operator->() { return &object(); }

    bool operator==(const SmartPtr& other) const { return _refCtr == other._refCtr; }

private:
    T& object()
    {
        if (!_refCtr)
            acquire();
        return _refCtr->getObject();
    }

    RefCtr<T>* _refCtr = nullptr;
    Cache<T>* _cache = nullptr; // where the object goes back to
};

template <class T>
void SmartPtr<T>::acquire()
{
    _cache = &Cache<T>::the_;
    _cache->lock();
    if (_cache->anyWaits()) [[unlikely]]
        _cache->listWaiting();
    RefCtr<T>* taken = nullptr;
    if (_cache->_free.empty()) {
        auto fresh = std::make_unique<RefCtr<T>>();
        _cache->_objects.push_back(fresh.get());
        taken = fresh.release();
    } else {
        taken = _cache->_free.back();
        _cache->_free.pop_back();
    }
    _cache->unlock();
    _refCtr = taken;
    _refCtr->incrementReferenceCounter();
}

template <class T>
void SmartPtr<T>::decrementReferenceCounter() noexcept
{
    if (!_refCtr || _refCtr->decrementReferenceCounter() != 0)
        return;
    _cache->lock();
    _cache->giveBack(_refCtr);
    _cache->unlock();
}

} // namespace Trovio
