#pragma once

#include "nodes/relay/Quaternion.h"
#include "nodes/shared/NumberList.h"
#include "trovio/Components.h"
#include <span>

// The values that a guard sends for a lost source. For each of the 40 types GuardValue<T> has
//   zero()          the default: 0, false, empty, the identity
//   read(settings)  what the setting 'value' says; throws InvalidFieldException
namespace Trovio::Nodes {

/// One component from one word. Numbers are finite.
template <class Component>
std::optional<Component> parseComponent(std::string_view word)
{
    if constexpr (std::is_same_v<Component, bool>) {
        return word == "true" || word == "false" ? std::optional(word == "true") : std::nullopt;
    } else {
        const auto number = parseNumber<Component>(word);
        return number && std::isfinite(static_cast<double>(*number)) ? number : std::nullopt;
    }
}

template <Numeric E>
std::optional<E> parseElement(std::span<const std::string_view> words)
{
    E element{};
    for (std::size_t i = 0; i < words.size(); ++i) {
        const auto component = parseComponent<typename Components<E>::Component>(words[i]);
        if (!component)
            return std::nullopt;
        Components<E>::set(element, i, *component);
    }
    if constexpr (std::is_same_v<E, Rotation>) {
        if (Quaternion(element).length() == 0.0)
            return std::nullopt;
        element = Quaternion(element).toRotation();
    }
    return element;
}

template <Numeric E>
std::string describeWords()
{
    if (std::is_same_v<E, bool>)
        return " times true or false, separated by blanks";
    const char* const note = std::is_same_v<E, Rotation> ? ", not all of them 0" : "";
    return std::string(" finite numbers that fit the type") + note + ", separated by blanks";
}

/// The elements that the setting names. Throws InvalidFieldException where it does not name as many as expected.
template <Numeric E>
std::vector<E> readElements(const Settings& settings, std::optional<std::size_t> expected = std::nullopt)
{
    constexpr std::size_t count = Components<E>::Count;
    const auto words = splitWords(settings.text("value"));
    std::vector<E> elements;
    for (std::size_t at = 0; at + count <= words.size(); at += count)
        if (const auto element = parseElement<E>(std::span(words).subspan(at, count)))
            elements.push_back(*element);
    if (elements.size() * count != words.size() || (expected && elements.size() != *expected))
        throw settings.refusal("value", std::to_string(count) + describeWords<E>() +
                                            (expected ? "" : ", for each element in turn"));
    return elements;
}

/// A handle on an object of its own.
template <class T>
SmartPtr<T> share(const T& object)
{
    SmartPtr<T> shared;
    *shared = object;
    return shared;
}

template <class T>
struct GuardValue {
    static T zero() { return T(); }
    static T read(const Settings& settings) { return readElements<T>(settings, 1).front(); }
};

template <>
struct GuardValue<std::string> {
    static std::string zero() { return {}; }
    static std::string read(const Settings& settings) { return settings.text("value"); }
};

/// Images, and arrays of them. Shared values are never null, so that readers need not ask.
template <class T>
struct GuardValue<SmartPtr<T>> {
    static SmartPtr<T> zero() { return share(T()); }
    static SmartPtr<T> read(const Settings& settings)
    {
        throw settings.refusal("then", "hold or zero with this type, for a picture cannot be written as text");
    }
};

template <Numeric E>
struct GuardValue<SharedVector<E>> {
    static SharedVector<E> zero() { return share(std::vector<E>()); }
    static SharedVector<E> read(const Settings& settings) { return share(readElements<E>(settings)); }
};

/// One text for each line.
template <>
struct GuardValue<SharedVector<std::string>> {
    static SharedVector<std::string> zero() { return share(std::vector<std::string>()); }
    static SharedVector<std::string> read(const Settings& settings);
};

} // namespace Trovio::Nodes
