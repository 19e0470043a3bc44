#pragma once

#include "trovio/FixedArray.h"
#include "trovio/Forward.h"

namespace Trovio {

/// Zero unless told otherwise; float or double.
template <class T>
class Vec2 : public FixedArray<T, 2> {
public:
    constexpr Vec2() = default;
    constexpr Vec2(T x, T y) : FixedArray<T, 2>(x, y) {}
};

template <class T>
class Vec3 : public FixedArray<T, 3> {
public:
    constexpr Vec3() = default;
    constexpr Vec3(T x, T y, T z) : FixedArray<T, 3>(x, y, z) {}
};

template <class T>
class Vec4 : public FixedArray<T, 4> {
public:
    constexpr Vec4() = default;
    constexpr Vec4(T x, T y, T z, T w) : FixedArray<T, 4>(x, y, z, w) {}
};

} // namespace Trovio
