#include "trovio/messages/NearestName.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <vector>

namespace Trovio {

namespace {

/// Longer texts are no misspelt name, and the distance costs the product of both lengths.
constexpr std::size_t maxName = 64;

bool sameLetter(char a, char b)
{
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

/// Insertions, deletions and replacements that turn one into the other.
std::size_t distance(std::string_view a, std::string_view b)
{
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (sameLetter(a[i], b[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}
} // namespace

std::string_view nearestName(std::string_view found, std::span<const std::string_view> known)
{
    std::string_view nearest;
    std::size_t least =
        std::min(std::max<std::size_t>(found.size() / 2, 1) + 1, found.size()); // something is to be left of it
    if (found.empty() || found.size() > maxName)
        return nearest;
    for (const std::string_view name : known) {
        const std::size_t steps = distance(found, name);
        if (steps < least) {
            least = steps;
            nearest = name;
        }
    }
    return nearest;
}

std::string nearestHint(std::string_view found, const std::vector<std::string>& known)
{
    const std::string_view nearest = nearestName(found, std::vector<std::string_view>(known.begin(), known.end()));
    return nearest.empty() ? std::string() : "; nearest: '" + std::string(nearest) + "'";
}

} // namespace Trovio
