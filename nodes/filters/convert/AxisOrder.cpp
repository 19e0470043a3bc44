#include "nodes/filters/convert/AxisOrder.h"

namespace Trovio::Nodes {

std::optional<AxisOrder> AxisOrder::parse(std::string_view text, std::size_t count)
{
    constexpr std::string_view capitals = "XYZW";
    if (text.size() != count)
        return std::nullopt;
    AxisOrder order;
    std::array<bool, 4> seen{};
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t small = Letters.substr(0, count).find(text[i]);
        const std::size_t found = small != std::string_view::npos ? small : capitals.substr(0, count).find(text[i]);
        if (found == std::string_view::npos || seen[found])
            return std::nullopt;
        seen[found] = true;
        order._source[i] = found;
        order._sign[i] = small != std::string_view::npos ? 1.0 : -1.0;
    }
    return order;
}

bool AxisOrder::isMirror() const
{
    bool mirror = false;
    for (std::size_t i = 0; i < _source.size(); ++i) {
        mirror ^= _sign[i] < 0.0;
        for (std::size_t j = 0; j < i; ++j)
            mirror ^= _source[j] > _source[i];
    }
    return mirror;
}

} // namespace Trovio::Nodes
