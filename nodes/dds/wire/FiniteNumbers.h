#pragma once

#include <cstddef>

namespace Trovio::Nodes {

/// Whether none of them is infinite or not-a-number. Any number of them.
bool areFinite(const float* numbers, std::size_t count);
bool areFinite(const double* numbers, std::size_t count);

} // namespace Trovio::Nodes
