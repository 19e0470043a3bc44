#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Host {

/// Text from outside as it may be shown on a terminal: control characters and bytes that are no UTF-8 become
/// `\n`, `\t` or `\xNN`; everything else stays. Longer texts end in "…" after about `limit` bytes.
std::string escaped(std::string_view text, std::size_t limit = 200);

/// The same between single quotes, short enough for a message.
std::string inQuotes(std::string_view text);

/// Bytes of the UTF-8 character at the start of `text`; 0 if there is none or it is not well-formed.
std::size_t utf8Length(std::string_view text);

/// Columns that `text` takes on a terminal, one per character.
std::size_t displayWidth(std::string_view text);
} // namespace Host
