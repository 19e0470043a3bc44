#pragma once

#include <cstddef>
#include <string_view>

namespace Trovio {

/// Bytes of the longest label that somebody may give to a slot, a namespace or a node, and of the longest pattern or
/// target of a route.
constexpr std::size_t MaxLabelLength = 1024;

/// Labels that begin with '@' belong to tools that look at a tree while it works, such as their namespaces below the
/// root: inspect() and explain() pass over what stands under such a label, and over routes that name one. The '*' of
/// any other route does not stand for them.
constexpr bool isForTools(std::string_view label)
{
    return label.starts_with('@');
}

} // namespace Trovio
