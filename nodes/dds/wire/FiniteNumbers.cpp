#include "nodes/dds/wire/FiniteNumbers.h"

#include <cmath>
#include <limits>

namespace Trovio::Nodes {

namespace {

/// In blocks without an early exit, so that the compiler vectorises them.
template <class Number>
[[gnu::always_inline]] inline bool areAllFiniteInBlocks(const Number* numbers, std::size_t count)
{
    constexpr std::size_t block = 64;
    constexpr Number largest = std::numeric_limits<Number>::max();
    unsigned others = 0;
    std::size_t i = 0;
    for (; i + block <= count; i += block)
        for (std::size_t j = 0; j < block; ++j)
            others |= std::fabs(numbers[i + j]) <= largest ? 0U : 1U;
    for (; i < count; ++i)
        others |= std::fabs(numbers[i]) <= largest ? 0U : 1U;
    return others == 0;
}

// Validating large arrays dominates receiving; AVX2 halves it.
#ifdef __x86_64__
template <class Number>
[[gnu::target("avx2")]] bool areAllFiniteWide(const Number* numbers, std::size_t count)
{
    return areAllFiniteInBlocks(numbers, count);
}
#endif

template <class Number>
bool areAllFinite(const Number* numbers, std::size_t count)
{
#ifdef __x86_64__
    static const bool isWide = __builtin_cpu_supports("avx2") > 0;
    if (isWide)
        return areAllFiniteWide(numbers, count);
#endif
    return areAllFiniteInBlocks(numbers, count);
}

} // namespace

bool areFinite(const float* numbers, std::size_t count)
{
    return areAllFinite(numbers, count);
}

bool areFinite(const double* numbers, std::size_t count)
{
    return areAllFinite(numbers, count);
}

} // namespace Trovio::Nodes
