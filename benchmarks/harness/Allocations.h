#pragma once

#include <cstdint>

namespace Bench {

/// Calls of malloc and its kin in the whole process so far, from C and C++ libraries alike. Two threads that allocate
/// at once may count one; where nobody allocates the number stands still, and that is what it is read for.
std::uint64_t allocations();

} // namespace Bench
