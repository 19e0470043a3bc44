#include "monitor/server/net/RequestHead.h"

#include <charconv>

namespace Monitor {
namespace {

bool decode(std::string_view text, bool plusIsBlank, std::string& decoded)
{
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            decoded += plusIsBlank && text[i] == '+' ? ' ' : text[i];
            continue;
        }
        const std::string_view digits = text.substr(i + 1, 2);
        unsigned char code = 0;
        const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
            return false;
        decoded += static_cast<char>(code);
        i += 2;
    }
    return true;
}

// The text up to the next separator, which it takes out.
std::string_view takeUpTo(char separator, std::string_view& rest)
{
    const std::string_view part = rest.substr(0, rest.find(separator));
    rest.remove_prefix(std::min(part.size() + 1, rest.size()));
    return part;
}
} // namespace

bool readTarget(std::string_view target, RequestHead& head)
{
    if (!decode(takeUpTo('?', target), false, head._path))
        return false;
    while (!target.empty()) {
        std::string_view value = takeUpTo('&', target);
        const std::string_view name = takeUpTo('=', value);
        std::string decodedName, decodedValue;
        if (!decode(name, true, decodedName) || !decode(value, true, decodedValue))
            return false;
        head._query[decodedName] = decodedValue;
    }
    return true;
}

std::vector<std::string> readList(std::string_view field)
{
    std::vector<std::string> list;
    while (!field.empty()) {
        std::string_view part = takeUpTo(',', field);
        const auto first = part.find_first_not_of(" \t");
        if (first != part.npos)
            list.emplace_back(part.substr(first, part.find_last_not_of(" \t") - first + 1));
    }
    return list;
}
} // namespace Monitor
