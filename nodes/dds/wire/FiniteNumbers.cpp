#include "nodes/dds/wire/FiniteNumbers.h"

#include <cmath>
#include <limits>

namespace Trovio::Nodes {

namespace {

/// In blocks without a way out, so that the compiler looks at many at once.
template <class Number>
[[gnu::always_inline]] inline bool look(const Number* numbers, std::size_t count)
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

// For large arrays this look is a good part of what it takes to receive them; twice as wide is twice as fast.
#ifdef __x86_64__
template <class Number>
[[gnu::target("avx2")]] bool lookWide(const Number* numbers, std::size_t count)
{
    return look(numbers, count);
}
#endif

template <class Number>
bool lookBest(const Number* numbers, std::size_t count)
{
#ifdef __x86_64__
    static const bool isWide = __builtin_cpu_supports("avx2") > 0;
    if (isWide)
        return lookWide(numbers, count);
#endif
    return look(numbers, count);
}

} // namespace

bool areFinite(const float* numbers, std::size_t count)
{
    return lookBest(numbers, count);
}

bool areFinite(const double* numbers, std::size_t count)
{
    return lookBest(numbers, count);
}

} // namespace Trovio::Nodes
