#include "explain/text/ListenAddress.h"

#include <arpa/inet.h>
#include <array>
#include <charconv>

namespace Explain {
namespace {

bool isAddress(int family, const std::string& text)
{
    std::array<unsigned char, sizeof(in6_addr)> ignored{};
    return inet_pton(family, text.c_str(), ignored.data()) == 1;
}

bool readPort(std::string_view text, std::uint16_t& port)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), port);
    return error == std::errc() && end == text.data() + text.size();
}
} // namespace

std::optional<ListenAddress> ListenAddress::read(std::string_view text)
{
    ListenAddress address;
    const bool hasBrackets = text.starts_with('[');
    const std::size_t end = hasBrackets ? text.find(']') : text.find(':');
    if (hasBrackets && end == text.npos)
        return std::nullopt;
    address._host = hasBrackets ? text.substr(1, end - 1) : text.substr(0, end);
    const std::string_view rest = end == text.npos ? "" : text.substr(hasBrackets ? end + 1 : end);
    if (!rest.empty() && (rest.front() != ':' || !readPort(rest.substr(1), address._port)))
        return std::nullopt;
    const bool isKnown = hasBrackets ? isAddress(AF_INET6, address._host)
                                     : address._host == "localhost" || isAddress(AF_INET, address._host);
    return isKnown ? std::optional(address) : std::nullopt;
}
} // namespace Explain
