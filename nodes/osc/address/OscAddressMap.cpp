#include "nodes/osc/address/OscAddressMap.h"

#include <algorithm>

namespace Trovio::Nodes {

OscPositions& OscPositions::operator|=(const OscPositions& other)
{
    for (std::size_t i = 0; i < _words.size(); ++i)
        _words[i] |= other._words[i];
    return *this;
}

OscPositions OscPositions::without(const OscPositions& other) const
{
    OscPositions rest;
    for (std::size_t i = 0; i < _words.size(); ++i)
        rest._words[i] = _words[i] & ~other._words[i];
    return rest;
}

OscPositions OscPositions::passing(const OscPositions& characters) const
{
    OscPositions next;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < _words.size(); ++i) {
        const std::uint64_t passed = _words[i] & characters._words[i];
        next._words[i] = passed << 1U | carry;
        carry = passed >> 63U;
    }
    return next;
}

OscPositions OscPositions::passingAll(const OscPositions& characters) const
{
    // Added to a run of ones, a one within carries to the run's end; what the sum changes is the way that it went.
    OscPositions next;
    std::uint64_t carry = 0;
    for (std::size_t i = 0; i < _words.size(); ++i) {
        const std::uint64_t run = characters._words[i];
        std::uint64_t sum = 0;
        const bool first = __builtin_add_overflow(run, _words[i] & run, &sum);
        const bool second = __builtin_add_overflow(sum, carry, &sum);
        carry = first || second ? 1 : 0;
        next._words[i] = _words[i] | (sum ^ run);
    }
    return next;
}

OscAddressMap::OscAddressMap(std::string_view address) : _size(std::min(address.size(), MaxOscAddress))
{
    std::array<OscPositions, 256> found{};
    std::array<bool, 256> isThere{};
    for (std::size_t i = 0; i < _size; ++i) {
        const auto character = static_cast<unsigned char>(address[i]);
        found[character].set(i);
        isThere[character] = true;
        if (character != '/')
            _plain.set(i);
    }
    _below.emplace_back();
    for (std::size_t character = 0; character < found.size(); ++character) {
        if (isThere[character]) {
            _below.push_back(_below.back());
            _below.back() |= found[character];
        }
        _ranks[character + 1] = static_cast<std::uint8_t>(_below.size() - 1);
    }
}

OscPositions OscAddressMap::find(unsigned char first, unsigned char last) const
{
    if (last < first)
        return {};
    return _below[_ranks[last + std::size_t{1}]].without(_below[_ranks[first]]);
}

} // namespace Trovio::Nodes
