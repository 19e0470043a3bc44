#pragma once

#include <array>
#include <cstddef>

namespace Ostrel {

/// Numbers side by side; zero at first.
template <class T, std::size_t N>
struct Vector {
    using Element = T;
    static constexpr std::size_t size() { return N; }
    T* data() { return _elements.data(); }
    const T* data() const { return _elements.data(); }
    bool operator==(const Vector&) const = default;

    std::array<T, N> _elements{};
};

using Vec2f = Vector<float, 2>;
using Vec2d = Vector<double, 2>;
using Vec3f = Vector<float, 3>;
using Vec3d = Vector<double, 3>;
using Vec4f = Vector<float, 4>;
using Vec4d = Vector<double, 4>;

/// Red, green and blue; black at first. A class of its own, so that it is never mistaken for a place.
struct Color : Vector<float, 3> {
    bool operator==(const Color&) const = default;
};

/// Red, green, blue and alpha; zero at first.
struct ColorRGBA : Vector<float, 4> {
    bool operator==(const ColorRGBA&) const = default;
};

/// A square matrix, stored column by column: row r of column c is data()[c * Order + r]. The identity at first.
template <class T, std::size_t Order>
struct Matrix {
    using Element = T;
    static constexpr std::size_t order() { return Order; }
    static constexpr std::size_t size() { return Order * Order; }
    Matrix()
    {
        for (std::size_t i = 0; i < Order; ++i)
            _elements[i * Order + i] = T(1);
    }
    T* data() { return _elements.data(); }
    const T* data() const { return _elements.data(); }
    bool operator==(const Matrix&) const = default;

    std::array<T, Order * Order> _elements{};
};

using Matrix3f = Matrix<float, 3>;
using Matrix3d = Matrix<double, 3>;
using Matrix4f = Matrix<float, 4>;
using Matrix4d = Matrix<double, 4>;

} // namespace Ostrel
