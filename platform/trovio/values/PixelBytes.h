#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Trovio {

/// How the bytes of a pixel become those of another one, where that takes no arithmetic.
struct PixelBytes {
    static constexpr int Opaque = -1; // 255, from nowhere

    unsigned _fromBytes; // of a pixel, 1 to 4
    unsigned _toBytes;
    std::array<int, 4> _from; // for each byte of the result its place in the source pixel, or Opaque

    /// The two must not overlap.
    void move(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;
};

} // namespace Trovio
