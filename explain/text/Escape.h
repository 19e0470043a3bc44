#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Explain {

/// Text from outside as it may be shown on a terminal, see osg::escapeControls(), in about `limit` bytes at most.
std::string escaped(std::string_view text, std::size_t limit = 200);

/// The same between single quotes, short enough for a message.
std::string inQuotes(std::string_view text);
} // namespace Explain
