#include "trovio/SettingValue.h"

#include "trovio/messages/NearestName.h"
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace Trovio {

namespace {

template <class T>
std::optional<T> parseWhole(std::string_view text)
{
    T value{};
    const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (problem != std::errc() || end != text.data() + text.size())
        return std::nullopt;
    return value;
}

std::string formatNumber(double number)
{
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    return {text.data(), end};
}

std::string formatRange(const Setting& row)
{
    return formatNumber(row._lowest) + " to " + formatNumber(row._highest);
}

/// Of "a|b|c".
std::vector<std::string> split(std::string_view choices)
{
    std::vector<std::string> names;
    for (;;) {
        const std::size_t bar = choices.find('|');
        names.emplace_back(choices.substr(0, bar));
        if (bar == std::string_view::npos)
            return names;
        choices.remove_prefix(bar + 1);
    }
}

std::optional<std::int64_t> findChoice(std::string_view choices, std::string_view text)
{
    const std::vector<std::string> names = split(choices);
    const auto found = std::find(names.begin(), names.end(), text);
    return found == names.end() ? std::nullopt : std::optional<std::int64_t>(found - names.begin());
}

bool isHost(std::string_view host)
{
    constexpr std::string_view allowed =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789.-_:%"; // with IPv6 and its zones
    return host.size() <= 253 && host.find_first_not_of(allowed) == std::string_view::npos;
}

std::optional<Endpoint> parseEndpoint(std::string_view text)
{
    const std::size_t colon = text.rfind(':');
    const auto port = parseWhole<std::uint16_t>(colon == std::string_view::npos ? text : text.substr(colon + 1));
    std::string_view host = colon == std::string_view::npos ? std::string_view() : text.substr(0, colon);
    const bool bracketed = host.size() > 2 && host.front() == '[' && host.back() == ']';
    if (bracketed)
        host = host.substr(1, host.size() - 2);
    if (!port || !isHost(host) || (!bracketed && host.find(':') != std::string_view::npos))
        return std::nullopt;
    return Endpoint{host.empty() ? "127.0.0.1" : std::string(host), *port};
}

/// File names are free text, URLs are not.
std::string percentEncode(std::string_view path)
{
    constexpr std::string_view plain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-._~/";
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string encoded;
    for (const char character : path) {
        const auto byte = static_cast<unsigned char>(character);
        if (plain.find(character) != std::string_view::npos)
            encoded += character;
        else
            encoded.append({'%', digits[byte >> 4U], digits[byte & 15U]});
    }
    return encoded;
}

std::optional<std::string> readFile(const std::string& text, const Merid::URL& baseURL, std::string& path)
{
    if (text.find('\0') != std::string::npos)
        return "a file name without zero bytes";
    if (text.empty() || text.front() == '/') {
        path = text;
        return std::nullopt;
    }
    try {
        path = (baseURL.empty() ? Merid::URL("file:.") : baseURL).resolve(percentEncode(text)).path();
        return std::nullopt;
    } catch (const std::invalid_argument& problem) {
        return std::string("a file below the base URL, or an absolute path (") + problem.what() + ")";
    }
}

bool inRange(const Setting& row, double number)
{
    return std::isfinite(number) && number >= row._lowest && number <= row._highest;
}

/// False where text is not what the row allows.
bool readPlain(const Setting& row, const std::string& text, SettingValue& value)
{
    switch (row._kind) {
    case SettingKind::Bool:
    case SettingKind::Choice: {
        const auto position = findChoice(row._kind == SettingKind::Bool ? "false|true" : row._choices, text);
        value._integer = position.value_or(0);
        return position.has_value();
    }
    case SettingKind::Integer: {
        const auto integer = parseWhole<std::int64_t>(text);
        value._integer = integer.value_or(0);
        return integer && inRange(row, static_cast<double>(*integer));
    }
    case SettingKind::Number: {
        const auto number = parseWhole<double>(text);
        value._number = number.value_or(0.0);
        return number && inRange(row, *number);
    }
    case SettingKind::Endpoint:
        value._endpoint = parseEndpoint(text);
        return text.empty() || value._endpoint;
    case SettingKind::Text:
    case SettingKind::File:
        break;
    }
    return true;
}

} // namespace

std::optional<std::string> readSettingValue(const Setting& row, const std::string& text, const Merid::URL& baseURL,
                                            SettingValue& value)
{
    if (row._kind == SettingKind::File)
        return readFile(text, baseURL, value._path);
    if (readPlain(row, text, value))
        return std::nullopt;
    return describeAllowed(row) + (row._kind == SettingKind::Choice ? nearestHint(text, split(row._choices)) : "");
}

std::string describeAllowed(const Setting& row)
{
    switch (row._kind) {
    case SettingKind::Text:
        return row._choices;
    case SettingKind::Bool:
        return "true or false";
    case SettingKind::Integer:
        return "integer from " + formatRange(row);
    case SettingKind::Number:
        return "number from " + formatRange(row);
    case SettingKind::Endpoint:
        return "host:port, [IPv6 address]:port or port, with port 0 to 65535, or nothing";
    case SettingKind::File:
        return "file name";
    case SettingKind::Choice:
        break;
    }
    std::string names(row._choices);
    for (std::size_t bar = 0; (bar = names.find('|', bar)) != std::string::npos;)
        names.replace(bar, 1, ", ");
    return "one of " + names;
}

} // namespace Trovio
