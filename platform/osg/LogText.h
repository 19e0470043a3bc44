#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace osg {

/// Bytes of the UTF-8 character at the start of `text`; 0 if there is none or it is not well-formed.
std::size_t utf8Length(std::string_view text);

/// Whether a well-formed character changes what a terminal or a line shows instead of being shown: the control
/// characters up to U+001F and from U+007F to U+009F, the separators of lines and paragraphs, the marks that turn the
/// direction of writing.
bool isControl(std::string_view character);

/// The text with control characters and bytes that are not UTF-8 written as \n, \r, \t or \xNN, so that a line stays
/// one line, is UTF-8, and a terminal obeys nothing that came with a name from outside. A backslash stays as it is.
/// Texts that take more than about `limit` bytes end in "…" there.
std::string escapeControls(std::string_view text, std::size_t limit = std::string::npos);

} // namespace osg
