#include "explain/ValueJson.h"

#include <array>
#include <charconv>

namespace Explain {

nlohmann::json valueJson(float value)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.begin(), text.end(), value).ptr;
    double shortest = value;
    std::from_chars(text.begin(), end, shortest);
    return shortest;
}

nlohmann::json imageJson(std::uint64_t width, std::uint64_t height, std::string_view format, std::size_t bytes)
{
    return {{"width", width}, {"height", height}, {"format", format}, {"bytes", bytes}};
}

} // namespace Explain
