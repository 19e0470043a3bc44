#pragma once

#include "trovio/FixedArray.h"
#include "trovio/Forward.h"

namespace Trovio {

/// N times N elements in one run, row by row. The identity unless told otherwise.
template <class T, std::size_t N>
class SquareMatrix : public FixedArray<T, N * N> {
public:
    static constexpr std::size_t order() { return N; }

protected:
    constexpr SquareMatrix()
    {
        for (std::size_t i = 0; i < N; ++i)
            this->_elements[i * (N + 1)] = T(1);
    }

    /// From N * N elements; transposed: the source is read column by column.
    constexpr SquareMatrix(const T* source, bool transpose)
    {
        for (std::size_t i = 0; i < N; ++i)
            for (std::size_t j = 0; j < N; ++j)
                this->_elements[i * N + j] = transpose ? source[j * N + i] : source[i * N + j];
    }
};

template <class T>
class Matrix3 : public SquareMatrix<T, 3> {
public:
    constexpr Matrix3() = default;
    constexpr Matrix3(const T* source, bool transpose) : SquareMatrix<T, 3>(source, transpose) {}
};

template <class T>
class Matrix4 : public SquareMatrix<T, 4> {
public:
    constexpr Matrix4() = default;
    constexpr Matrix4(const Matrix4&) = default;
    constexpr Matrix4& operator=(const Matrix4&) = default;
    constexpr Matrix4(const T* source, bool transpose) : SquareMatrix<T, 4>(source, transpose) {}
};

} // namespace Trovio
