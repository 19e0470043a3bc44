#pragma once

#include <string>
#include <string_view>

namespace osg {

/// The text with control characters written as \n, \r, \t or \xNN, so that a line stays one line and a terminal obeys
/// nothing that came with a name from outside. UTF-8 stays as it is, but for the control characters U+0080 to U+009F.
std::string escapeControls(std::string_view text);

} // namespace osg
