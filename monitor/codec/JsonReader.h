#pragma once

#include "trovio/Components.h"

#include <nlohmann/json.hpp>
#include <optional>

namespace Monitor {

/// Reads values from JSON as jsonOf() writes it; null is a number that is none. After the first fault the problem says
/// where it is and what stands there.
class JsonReader {
public:
    using Json = nlohmann::json;

    bool get(const Json& json, bool& value);
    bool get(const Json& json, long& value);
    bool get(const Json& json, double& value);
    bool get(const Json& json, float& value);
    bool get(const Json& json, std::string& value);
    /// Never: JSON has no pixels.
    bool get(const Json& json, Trovio::Image& value);

    template <Trovio::Numeric T>
    requires(!std::is_arithmetic_v<T>) bool get(const Json& json, T& value);

    template <class E>
    bool get(const Json& json, std::vector<E>& values);

    /// "value[1][0]: found the text 'x'"
    const std::string& problem() const { return _problem; }

private:
    bool failAt(const Json& json);
    bool isList(const Json& json, std::optional<std::size_t> length);

    std::vector<std::size_t> _path; // positions in the lists around what is read
    std::string _problem;
};

/// What a value of the type has to be, for a message: "a list of 3 numbers".
template <class T>
std::string jsonForm();

template <Trovio::Numeric T>
requires(!std::is_arithmetic_v<T>) bool JsonReader::get(const Json& json, T& value)
{
    using Components = Trovio::Components<T>;
    if constexpr (Components::Count > 1)
        if (!isList(json, Components::Count))
            return false;
    for (std::size_t i = 0; i < Components::Count; ++i) {
        typename Components::Component component{};
        if constexpr (Components::Count > 1)
            _path.push_back(i);
        if (!get(Components::Count > 1 ? json[i] : json, component))
            return false;
        if constexpr (Components::Count > 1)
            _path.pop_back();
        Components::set(value, i, component);
    }
    return true;
}

template <class E>
bool JsonReader::get(const Json& json, std::vector<E>& values)
{
    if (!isList(json, std::nullopt))
        return false;
    values.clear();
    for (std::size_t i = 0; i < json.size(); ++i) {
        E value{};
        _path.push_back(i);
        if (!get(json[i], value))
            return false;
        _path.pop_back();
        values.push_back(std::move(value));
    }
    return true;
}

template <class T>
struct JsonForm {
    static std::string text()
    {
        using Components = Trovio::Components<T>;
        using Component = typename Components::Component;
        if constexpr (std::is_same_v<T, bool>)
            return "true or false";
        else if constexpr (std::is_integral_v<Component>)
            return "a whole number of 64 bits";
        else if constexpr (Components::Count == 1)
            return "a number, or null for what is none";
        else
            return "a list of " + std::to_string(Components::Count) + " numbers";
    }
};
template <>
struct JsonForm<std::string> {
    static std::string text() { return "a text"; }
};
template <>
struct JsonForm<Trovio::Image> {
    static std::string text() { return "not to be had from JSON, which has no pixels; send it as CDR"; }
};
template <class E>
struct JsonForm<std::vector<E>> {
    static std::string text() { return "a list, and each element of it " + JsonForm<E>::text(); }
};

template <class T>
std::string jsonForm()
{
    return JsonForm<T>::text();
}

} // namespace Monitor
