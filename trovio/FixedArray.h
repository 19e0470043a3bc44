#pragma once

#include <cstddef>

namespace Trovio {

/// N components of type T in one run: what vectors, colours, rotations and matrices have in common.
template <class T, std::size_t N>
class FixedArray {
public:
    using Component = T;
    static constexpr std::size_t size() { return N; }

    constexpr T* data() { return _elements; }
    constexpr const T* data() const { return _elements; }
    constexpr T& operator[](std::size_t i) { return _elements[i]; }
    constexpr const T& operator[](std::size_t i) const { return _elements[i]; }
    constexpr bool operator==(const FixedArray&) const = default;

protected:
    constexpr FixedArray() = default; // zeros
    template <class... Components>
    constexpr explicit FixedArray(T first, Components... others) : _elements{first, others...}
    {
        static_assert(sizeof...(others) + 1 == N);
    }

    T _elements[N]{};
};

} // namespace Trovio
