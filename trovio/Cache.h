#pragma once

#include "trovio/BasicCache.h"
#include "trovio/RefCtr.h"
#include "trovio/SlotTypeList.h"
#include <deque>
#include <exception>
#include <new>

namespace Trovio {

/// The pool of all shared objects of one type. It never shrinks while it lives.
/// Invariant: every object is in _objects once, and in _free at most once, exactly while nobody holds it; or it waits
///            for _free to grow.
/// Ownership: owns every object from its creation to its own destruction; handles only count.
/// Threads:   the deques only between lock() and unlock(); a leaf but for the log.
template <class T>
class Cache : public BasicCache {
public:
    Cache() = default;

    /// Takes no lock: nobody may be left to take it from. Throws std::exception, and frees nothing, while objects
    /// are still held; at the library's unload this ends the process, and is meant to.
    ~Cache() noexcept(false) OSTREL_NO_THREAD_SAFETY_ANALYSIS;

    static Cache the_;

private:
    friend class SmartPtr<T>;

    /// Lists an object as free; where memory has run out, it waits.
    void giveBack(RefCtr<T>* const& object) noexcept OSTREL_REQUIRES(this)
    {
        if (anyWaits()) [[unlikely]]
            listWaiting();
        if (!list(object)) [[unlikely]]
            addWaiting(*object);
    }

    /// Lists those that wait, as far as memory reaches. Kept out of the way of those who find that nobody waits.
    [[gnu::noinline, gnu::cold]] void listWaiting() noexcept OSTREL_REQUIRES(this)
    {
        while (anyWaits() && list(static_cast<RefCtr<T>*>(firstWaiting())))
            removeFirstWaiting();
    }

    [[gnu::always_inline]] bool list(RefCtr<T>* const& object) noexcept OSTREL_REQUIRES(this)
    {
        try {
            _free.push_back(object);
            return true;
        } catch (const std::bad_alloc&) {
            return false;
        }
    }

    std::deque<RefCtr<T>*> _objects OSTREL_GUARDED_BY(this);
    std::deque<RefCtr<T>*> _free OSTREL_GUARDED_BY(this); // waiting for reuse, last freed at the back
};

template <class T>
Cache<T>::~Cache() noexcept(false)
{
    listWaiting();
    if (_objects.size() != _free.size())
        throw std::exception();
    while (!_objects.empty()) {
        delete _objects.back();
        _objects.pop_back();
    }
}

// Defined in one unit of the library, in the order of the list: explicit specialisations are initialised in the order
// in which they stand, instantiations are not.
#define TROVIO_DECLARE_POOL(type, name)                                                                                \
    template <>                                                                                                        \
    Cache<type> Cache<type>::the_;
TROVIO_POOLED_TYPES(TROVIO_DECLARE_POOL)
#undef TROVIO_DECLARE_POOL

} // namespace Trovio
