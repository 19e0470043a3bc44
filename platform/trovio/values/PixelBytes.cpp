#include "trovio/values/PixelBytes.h"

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace Trovio {

namespace {

void moveOneByOne(const PixelBytes& bytes, const std::uint8_t* from, std::uint8_t* to, std::size_t pixels)
{
    for (; pixels > 0; --pixels, from += bytes._fromBytes, to += bytes._toBytes) {
        for (unsigned i = 0; i < bytes._toBytes; ++i)
            to[i] = bytes._from[i] < 0 ? std::uint8_t(255) : from[bytes._from[i]];
    }
}

#ifdef __x86_64__
// A register has two halves of four pixels each, at up to four bytes a pixel.
constexpr unsigned perHalf = 4;
constexpr unsigned atOnce = 2 * perHalf;
constexpr unsigned halfBytes = 16;

struct Shuffle {
    alignas(halfBytes) std::uint8_t _places[halfBytes] = {};   // for each byte of a half
    alignas(halfBytes) std::uint8_t _opaque[halfBytes] = {};   // what is put in where nothing comes from
    alignas(2 * halfBytes) std::uint32_t _joined[atOnce] = {}; // words of both halves without the gap between them

    explicit Shuffle(const PixelBytes& bytes)
    {
        for (unsigned i = 0; i < perHalf * bytes._toBytes; ++i) {
            const int place = bytes._from[i % bytes._toBytes];
            // The shuffle makes a byte zero whose place has its highest bit set.
            _places[i] = static_cast<std::uint8_t>(
                place < 0 ? 128U : i / bytes._toBytes * bytes._fromBytes + static_cast<unsigned>(place));
            _opaque[i] = place < 0 ? 255 : 0;
        }
        for (unsigned i = 0; i < 2 * bytes._toBytes; ++i)
            _joined[i] = i < bytes._toBytes ? i : perHalf + i - bytes._toBytes;
    }
};

const __m128i* half(const std::uint8_t* bytes)
{
    return reinterpret_cast<const __m128i*>(bytes);
}

/// Moves eight pixels at a time as long as whole registers fit into both sides; returns how many.
[[gnu::target("avx2")]] std::size_t moveInEights(const PixelBytes& bytes, const std::uint8_t* from, std::uint8_t* to,
                                                 std::size_t pixels)
{
    const Shuffle shuffle(bytes);
    const __m256i places = _mm256_broadcastsi128_si256(_mm_load_si128(half(shuffle._places)));
    const __m256i opaque = _mm256_broadcastsi128_si256(_mm_load_si128(half(shuffle._opaque)));
    const __m256i joined = _mm256_load_si256(reinterpret_cast<const __m256i*>(shuffle._joined));
    // What is written behind the eight pixels is overwritten by the next round.
    std::size_t moved = 0;
    for (; moved + 2 * halfBytes <= pixels; moved += atOnce) {
        const std::uint8_t* const source = from + moved * bytes._fromBytes;
        const __m256i eight = _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(half(source))),
                                                      _mm_loadu_si128(half(source + perHalf * bytes._fromBytes)), 1);
        const __m256i placed = _mm256_or_si256(_mm256_shuffle_epi8(eight, places), opaque);
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + moved * bytes._toBytes),
                            _mm256_permutevar8x32_epi32(placed, joined));
    }
    return moved;
}
#endif

} // namespace

void PixelBytes::move(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const
{
    std::size_t moved = 0;
#ifdef __x86_64__
    if (__builtin_cpu_supports("avx2"))
        moved = moveInEights(*this, from, to, pixels);
#endif
    moveOneByOne(*this, from + moved * _fromBytes, to + moved * _toBytes, pixels - moved);
}

} // namespace Trovio
