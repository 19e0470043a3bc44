#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

namespace Explain {

/// How values stand in JSON, wherever they come from: a field or a slot. Numbers have as many digits as tell them from
/// every other one of their type, what is no number becomes null, images say what they are without their pixels.
template <std::integral Whole>
nlohmann::json valueJson(Whole value)
{
    return value;
}

inline nlohmann::json valueJson(double value)
{
    return value;
}

/// The shortest decimal that is this float, 1.6 and not 1.600000023841858.
nlohmann::json valueJson(float value);

inline nlohmann::json valueJson(const std::string& value)
{
    return value;
}

nlohmann::json imageJson(std::uint64_t width, std::uint64_t height, std::string_view format, std::size_t bytes);

} // namespace Explain
