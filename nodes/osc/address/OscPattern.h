#pragma once

#include "nodes/osc/address/OscAddressMap.h"

namespace Trovio::Nodes {

/// True if an incoming address is a pattern rather than the name of one address.
bool isOscPattern(std::string_view address);

/// Whether the pattern means this address: '?' is any one character, '*' any run of them, both without '/';
/// "[a-c]" one of these characters, "[!a-c]" none of them, "{one,two}" one of these texts. A pattern with a bracket
/// that is not closed, or longer than MaxOscAddress, means none. The effort grows with the length of the pattern alone,
/// whatever characters it has.
bool matchesOscPattern(std::string_view pattern, const OscAddressMap& address);

} // namespace Trovio::Nodes
