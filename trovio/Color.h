#pragma once

#include "trovio/FixedArray.h"
#include "trovio/Forward.h"

namespace Trovio {

/// Red, green, blue; 0 to 1 by habit, not by force. Black unless told otherwise.
class Color : public FixedArray<float, 3> {
public:
    constexpr Color() = default;
    constexpr Color(float r, float g, float b) : FixedArray(r, g, b) {}
};

/// Red, green, blue, alpha. All zero unless told otherwise.
class ColorRGBA : public FixedArray<float, 4> {
public:
    constexpr ColorRGBA() = default;
    constexpr ColorRGBA(float r, float g, float b, float a) : FixedArray(r, g, b, a) {}
};

} // namespace Trovio
