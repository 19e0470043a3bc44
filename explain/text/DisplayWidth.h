#pragma once

#include <cstddef>
#include <string_view>

namespace Explain {

/// Columns that `text` takes on a terminal: two for a wide character (Chinese, Japanese, Korean, most emoji), none for
/// one that combines with the one before it.
std::size_t displayWidth(std::string_view text);

/// Bytes of the longest beginning of `text` that takes at most `columns`.
std::size_t bytesWithin(std::string_view text, std::size_t columns);

/// Bytes of the first character.
std::size_t firstCharacter(std::string_view text);
} // namespace Explain
