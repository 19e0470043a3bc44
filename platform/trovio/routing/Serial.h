#pragma once

#include <cstdint>

namespace Trovio {

/// A number that nothing else in the tree has, larger than all before. Under the tree lock.
inline std::uint64_t nextSerial()
{
    static std::uint64_t last = 0;
    return ++last;
}

/// Orders things by when they were made, which keeps connections and listings in a fixed order.
struct BySerial {
    template <class T>
    bool operator()(const T* left, const T* right) const
    {
        return left->_serial < right->_serial;
    }
};

} // namespace Trovio
