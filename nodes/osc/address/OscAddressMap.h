#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

namespace Trovio::Nodes {

/// Longest address of a slot and longest pattern that is looked at, in bytes.
constexpr std::size_t MaxOscAddress = 255;

/// A set of positions in an address, from before its first character to behind its last; all of them in one step.
class OscPositions {
public:
    void set(std::size_t position) { _words[position / 64] |= std::uint64_t{1} << position % 64; }
    bool test(std::size_t position) const { return (_words[position / 64] >> position % 64 & 1U) != 0; }
    bool any() const { return (_words[0] | _words[1] | _words[2] | _words[3]) != 0; }

    OscPositions& operator|=(const OscPositions& other);
    OscPositions without(const OscPositions& other) const;

    /// What is reached when the characters there are taken one further.
    OscPositions passing(const OscPositions& characters) const;
    /// What is reached with any number of those characters, none included.
    OscPositions passingAll(const OscPositions& characters) const;

private:
    std::array<std::uint64_t, 4> _words{};
};

/// Where each character stands in an address: what matching a pattern asks for, found once.
/// Threads: immutable.
class OscAddressMap {
public:
    /// Of up to MaxOscAddress bytes; what is more is left out.
    explicit OscAddressMap(std::string_view address);

    std::size_t size() const { return _size; }

    /// The positions of all characters from first to last.
    OscPositions find(unsigned char first, unsigned char last) const;
    /// The positions of all characters but '/'.
    const OscPositions& findPlain() const { return _plain; }

private:
    std::size_t _size;
    OscPositions _plain;
    std::array<std::uint8_t, 257> _ranks{}; // of a character: how many different lower ones the address has
    std::vector<OscPositions> _below;       // of a rank: where the characters of lower ranks stand
};

} // namespace Trovio::Nodes
