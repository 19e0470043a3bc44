#pragma once

#include <cstddef>
#include <string_view>

namespace Trovio::Nodes {

/// Longest address of a slot and longest pattern that is looked at, in bytes.
constexpr std::size_t MaxOscAddress = 255;

/// True if an incoming address is a pattern rather than the name of one address.
bool isOscPattern(std::string_view address);

/// Whether the pattern means this address: '?' is any one character, '*' any run of them, both without '/';
/// "[a-c]" one of these characters, "[!a-c]" none of them, "{one,two}" one of these texts. A pattern with a bracket
/// that is not closed, or longer than MaxOscAddress, means none. The effort is bounded by the product of both lengths.
bool matchesOscPattern(std::string_view pattern, std::string_view address);

} // namespace Trovio::Nodes
