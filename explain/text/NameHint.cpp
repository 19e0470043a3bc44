#include "explain/text/NameHint.h"

#include "explain/text/Escape.h"

namespace Explain {

std::string nearestHint(std::string_view found, std::span<const std::string_view> known)
{
    const std::string_view nearest = nearestName(found, known);
    return nearest.empty() ? std::string() : "; nearest: " + inQuotes(nearest);
}

std::string listed(std::span<const std::string_view> names)
{
    std::string text;
    for (const std::string_view name : names)
        text.append(text.empty() ? "" : ", ").append(name);
    return text;
}
} // namespace Explain
