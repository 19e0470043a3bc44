#pragma once

#include "explain/ValueJson.h"
#include "trovio/Components.h"

namespace Monitor {

/// A slot value as the host shows it: lists for what has several components, matrices row by row.
template <Trovio::Numeric T>
nlohmann::json jsonOf(const T& value)
{
    using Components = Trovio::Components<T>;
    if constexpr (Components::Count == 1) {
        return Explain::valueJson(Components::get(value, 0));
    } else {
        nlohmann::json list = nlohmann::json::array();
        for (std::size_t i = 0; i < Components::Count; ++i)
            list.push_back(Explain::valueJson(Components::get(value, i)));
        return list;
    }
}

inline nlohmann::json jsonOf(const std::string& value)
{
    return Explain::valueJson(value);
}

inline nlohmann::json jsonOf(const Trovio::Image& value)
{
    const auto format = Trovio::Image::findFormat(value.getFormat())->_name;
    return Explain::imageJson(value.getWidth(), value.getHeight(), format, value.getDataSize());
}

template <class E>
nlohmann::json jsonOf(const std::vector<E>& values)
{
    nlohmann::json list = nlohmann::json::array();
    for (const E& value : values)
        list.push_back(jsonOf(value));
    return list;
}

} // namespace Monitor
