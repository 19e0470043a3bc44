#pragma once

#include "trovio/BasicCache.h"
#include "trovio/Forward.h"
#include "trovio/RefCtr.h"
#include <deque>
#include <exception>

namespace Trovio {

/// The pool of all shared objects of one type. It never shrinks while it lives.
/// Invariant: every object is in _objects once, and in _free at most once, exactly while nobody holds it.
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

    std::deque<RefCtr<T>*> _objects OSTREL_GUARDED_BY(this);
    std::deque<RefCtr<T>*> _free OSTREL_GUARDED_BY(this); // waiting for reuse, last freed at the back
};

template <class T>
Cache<T>::~Cache() noexcept(false)
{
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
