#pragma once

#include "trovio/SmartPtr.h"
#include <exception>
#include <memory>

/// Whether every object of the pool came back; the pool starts afresh afterwards. Only while nobody uses it.
template <class T>
bool poolIsWhole()
{
    auto& pool = Trovio::Cache<T>::the_;
    bool whole = true;
    try {
        std::destroy_at(&pool); // throws while something is held
    } catch (const std::exception&) {
        whole = false;
    }
    std::construct_at(&pool);
    return whole;
}
