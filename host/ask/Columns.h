#pragma once

#include <string>
#include <vector>

namespace Host {

/// Lines as columns that stand two blanks apart, each as wide as its longest text; those behind the first `left`
/// columns stand at the right of theirs. No blanks at the end of a line.
std::string columns(const std::vector<std::vector<std::string>>& lines, std::size_t left);
} // namespace Host
