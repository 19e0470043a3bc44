#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace Monitor {

/// What a client sent, of up to 16 levels; nothing for any other text. Whoever goes through the levels by recursion is
/// then safe, as is nlohmann's dump().
inline std::optional<nlohmann::json> readJson(std::string_view text)
{
    using Json = nlohmann::json;
    bool isDeep = false;
    const auto keep = [&isDeep](int depth, Json::parse_event_t, Json&) {
        isDeep = isDeep || depth > 16;
        return !isDeep;
    };
    Json read = Json::parse(text, keep, false);
    return isDeep || read.is_discarded() ? std::nullopt : std::optional(std::move(read));
}

/// The same, where it is an object.
inline std::optional<nlohmann::json> readObject(std::string_view text)
{
    auto read = readJson(text);
    return read && read->is_object() ? std::move(read) : std::nullopt;
}

/// The text under that key; nothing where there is none.
inline std::optional<std::string> textAt(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? std::optional(found->get<std::string>()) : std::nullopt;
}

/// A whole number of 32 bits; nothing for any other value.
inline std::optional<std::uint32_t> numberIn(const nlohmann::json& value)
{
    if (!value.is_number_unsigned() || value.get<std::uint64_t>() > UINT32_MAX)
        return std::nullopt;
    return value.get<std::uint32_t>();
}

/// The list under that key; null where there is none.
inline const nlohmann::json* listAt(const nlohmann::json& object, const char* key)
{
    const auto found = object.find(key);
    return found != object.end() && found->is_array() ? &*found : nullptr;
}
} // namespace Monitor
