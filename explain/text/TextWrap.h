#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Explain {

/// Text cut, with "…" for the rest, or filled with blanks to exactly `width` columns.
std::string fitted(std::string_view text, std::size_t width);

/// Text as lines of at most `width` columns, broken at blanks and rather behind a semicolon; a longer word is cut in
/// two. Every line but the first starts with `indent` blanks. At least one line.
std::vector<std::string> wrapped(std::string_view text, std::size_t width, std::size_t indent);
} // namespace Explain
