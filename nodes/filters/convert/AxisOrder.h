#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace Trovio::Nodes {

/// Which of up to four components goes where, and whether it is negated, as a text says: "xZy".
/// A plain value; everything stays in its place unless told otherwise.
class AxisOrder {
public:
    static constexpr std::string_view Letters = "xyzw";

    /// Each of the first count letters once, a capital for a negated component; the text has no others.
    static std::optional<AxisOrder> parse(std::string_view text, std::size_t count);

    std::size_t source(std::size_t i) const { return _source[i]; }
    double sign(std::size_t i) const { return _sign[i]; }

    /// Whether a left hand becomes a right one.
    bool isMirror() const;

private:
    std::array<std::size_t, 4> _source{0, 1, 2, 3};
    std::array<double, 4> _sign{1.0, 1.0, 1.0, 1.0};
};

} // namespace Trovio::Nodes
