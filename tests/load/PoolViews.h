#pragma once

#include "trovio/Values.h"
#include <cstring>
#include <vector>

/// Where the pool of one type stands: as whoever includes this sees it, and as the library does.
struct PoolView {
    const void* _here;
    const void* _inLibrary;
    bool operator==(const PoolView&) const = default;
};

template <class T>
PoolView viewPool()
{
    // Through a pointer that no compiler sees through, so that it is the library's code that binds the handle.
    void (Trovio::SmartPtr<T>::*volatile acquire)() = &Trovio::SmartPtr<T>::acquire;
    Trovio::SmartPtr<T> handle;
    (handle.*acquire)();
    const void* pointers[2]; // the object and its pool
    static_assert(sizeof(pointers) == sizeof(handle));
    std::memcpy(pointers, static_cast<const void*>(&handle), sizeof(pointers));
    return {&Trovio::Cache<T>::the_, pointers[1]};
}

inline std::vector<PoolView> viewPools()
{
    std::vector<PoolView> views;
#define VIEW_POOL(type, name) views.push_back(viewPool<type>());
    TROVIO_POOLED_TYPES(VIEW_POOL)
#undef VIEW_POOL
    return views;
}
