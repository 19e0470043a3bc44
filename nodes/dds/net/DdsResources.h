#pragma once

#include <string>

namespace Trovio::Nodes {

/// Checks that the system has what a domain takes: threads, descriptors and memory. Where the DDS library gets less
/// while it opens one, it ends the program. Takes them all at once, for about a millisecond.
/// Returns what is missing, how much of it there is, and the cure; empty if nothing is.
std::string findShortage();

} // namespace Trovio::Nodes
