#pragma once

#include <cstddef>
#include <span>
#include <string>

inline std::string hexOf(std::span<const std::byte> bytes)
{
    std::string digits;
    for (const std::byte byte : bytes)
        for (const unsigned shift : {4U, 0U})
            digits += "0123456789abcdef"[std::to_integer<unsigned>(byte) >> shift & 15U];
    return digits;
}
