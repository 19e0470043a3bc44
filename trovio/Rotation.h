#pragma once

#include "trovio/FixedArray.h"
#include "trovio/Forward.h"

namespace Trovio {

/// A unit quaternion x, y, z, w. No rotation (0, 0, 0, 1) unless told otherwise.
class Rotation : public FixedArray<float, 4> {
public:
    constexpr Rotation() : FixedArray(0.0F, 0.0F, 0.0F, 1.0F) {}
    constexpr Rotation(float x, float y, float z, float w) : FixedArray(x, y, z, w) {}
};

} // namespace Trovio
