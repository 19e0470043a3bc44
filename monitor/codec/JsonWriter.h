#pragma once

#include "explain/ValueJson.h"
#include "explain/text/JsonText.h"
#include "monitor/codec/JsonNumber.h"
#include "trovio/Components.h"

namespace Monitor {

/// Appends a slot value as the host shows it: lists for what has several components, matrices row by row.
template <Trovio::Numeric T>
requires(!std::is_arithmetic_v<T>) void appendJson(std::string& text, const T& value)
{
    using Components = Trovio::Components<T>;
    for (std::size_t i = 0; i < Components::Count; ++i) {
        if (Components::Count > 1)
            text += i == 0 ? '[' : ',';
        appendJson(text, Components::get(value, i));
    }
    if (Components::Count > 1)
        text += ']';
}

inline void appendJson(std::string& text, const std::string& value)
{
    text += Explain::jsonText(Explain::valueJson(value));
}

inline void appendJson(std::string& text, const Trovio::Image& value)
{
    const auto format = Trovio::Image::findFormat(value.getFormat())->_name;
    text += Explain::jsonText(Explain::imageJson(value.getWidth(), value.getHeight(), format, value.getDataSize()));
}

template <class E>
void appendJson(std::string& text, const std::vector<E>& values)
{
    text += '[';
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (i > 0)
            text += ',';
        appendJson(text, static_cast<const E&>(values[i]));
    }
    text += ']';
}

} // namespace Monitor
