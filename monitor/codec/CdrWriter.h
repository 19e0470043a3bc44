#pragma once

#include "monitor/codec/Bytes.h"

#include <bit>
#include <cstdint>
#include <cstring>
#include <string_view>
#include <type_traits>

namespace Monitor {

static_assert(std::endian::native == std::endian::little, "numbers are copied into CDR as they lie in memory");

/// The 4 bytes that every message begins with: plain CDR, little-endian, no options.
constexpr std::byte cdrHead[] = {std::byte(0), std::byte(1), std::byte(0), std::byte(0)};

/// Writes a message as CDR: each number at a multiple of its size, counted from behind the head.
/// Ownership: refers to the bytes, whose memory is used again.
class CdrWriter {
public:
    /// Replaces what was in the bytes by a head.
    explicit CdrWriter(Bytes& out) : _out(out) { _out.assign(std::begin(cdrHead), std::end(cdrHead)); }

    template <class Number>
    requires std::is_arithmetic_v<Number>
    void put(Number number) { putRun<Number>(&number, 1); }

    /// `count` numbers, one behind the other, that begin at `first`: also the components of vectors and matrices.
    template <class Number>
    void putRun(const void* first, std::size_t count)
    {
        static_assert(sizeof(Number) <= 8, "CDR aligns to 8 bytes at most");
        if (count == 0)
            return; // nothing, not even what aligns it
        align(sizeof(Number));
        const auto* const bytes = static_cast<const std::byte*>(first);
        _out.insert(_out.end(), bytes, bytes + count * sizeof(Number));
    }

    /// The number of elements that follow. Throws std::length_error above 32 bits.
    void putCount(std::size_t count);
    /// With its end, a zero byte. Zero bytes within stay.
    void putText(std::string_view text);

private:
    void align(std::size_t size)
    {
        _out.resize(sizeof(cdrHead) + (_out.size() - sizeof(cdrHead) + size - 1) / size * size);
    }

    Bytes& _out;
};

} // namespace Monitor
