#include "monitor/server/doors/WhoMay.h"

#include "explain/text/Escape.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <sys/random.h>
#include <system_error>

namespace Monitor {

using Explain::inQuotes;

namespace {

constexpr std::string_view bearer = "Bearer ";

// "localhost:8765" and "[::1]:8765" without their ports, small letters.
std::string hostOnly(std::string_view text)
{
    const std::size_t bracket = text.starts_with('[') ? text.find(']') : text.npos;
    std::string host(bracket != text.npos ? text.substr(0, bracket + 1) : text.substr(0, text.find(':')));
    std::ranges::transform(host, host.begin(), [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
    return host;
}

bool isLoopback(const std::string& host)
{
    in_addr address{};
    return host == "localhost" || host == "[::1]" ||
           (inet_pton(AF_INET, host.c_str(), &address) == 1 && (ntohl(address.s_addr) >> 24) == 127);
}

// A page whose host is another one is foreign, and so is one without a host, such as "null". All names of loopback are
// one host.
bool isForeign(std::string_view origin, const std::string& host)
{
    const std::size_t scheme = origin.find("://");
    if (scheme == origin.npos)
        return true;
    const std::string from = hostOnly(origin.substr(scheme + 3));
    return from != host && !(isLoopback(from) && isLoopback(host));
}

bool changes(const RequestHead& head)
{
    return head._method != "GET" && head._method != "HEAD";
}

// Takes as long wherever the two differ first.
bool areEqual(std::string_view a, std::string_view b)
{
    unsigned difference = a.size() == b.size() ? 0 : 1;
    for (std::size_t i = 0; i < std::min(a.size(), b.size()); ++i)
        difference |= static_cast<unsigned char>(a[i] ^ b[i]);
    return difference == 0;
}

std::string_view givenToken(const RequestHead& head)
{
    if (head._authorization.starts_with(bearer))
        return std::string_view(head._authorization).substr(bearer.size());
    const auto found = head._query.find("token");
    return found == head._query.end() ? std::string_view() : found->second;
}
} // namespace

bool WhoMay::hasToken(const RequestHead& head) const
{
    return !_token.empty() && areEqual(givenToken(head), _token);
}

bool WhoMay::mayWrite(const RequestHead& head, Door door) const
{
    return door == Door::Unix || (_write && hasToken(head));
}

std::optional<std::string> WhoMay::refusal(const RequestHead& head, Door door, bool isPublic) const
{
    if (door == Door::Unix)
        return std::nullopt;
    const std::string host = hostOnly(head._host);
    if (door == Door::Loopback && !isLoopback(host))
        return "the request is for the host " + inQuotes(head._host) +
               ", which is no loopback name; allowed: 127.0.0.1, [::1] and localhost, such as the address that the "
               "host printed";
    if (!head._origin.empty() && isForeign(head._origin, host))
        return "a page of " + inQuotes(head._origin) + " may not ask " + inQuotes(head._host) +
               "; allowed: pages of the same host, and programs that are no browser";
    if (!givenToken(head).empty() && !hasToken(head))
        return "the token is not the one of this run; take the address that was printed at its start";
    if (door == Door::Network && !hasToken(head) && !isPublic)
        return "from another machine the token is needed, for reading, too; take the address that was printed at the "
               "start, or forward a port: ssh -L 8765:127.0.0.1:8765 MACHINE, where --monitor listens on loopback";
    if (changes(head) && !mayWrite(head, door))
        return head._method + " would change something, and TCP is for reading; use the Unix socket, or start with " +
               "--monitor-write and take the address with the token that it prints";
    return std::nullopt;
}

std::string newToken()
{
    std::array<unsigned char, 16> bits{};
    if (getrandom(bits.data(), bits.size(), 0) != static_cast<ssize_t>(bits.size()))
        throw std::system_error(errno, std::generic_category(), "no random number for a token");
    std::string token;
    for (const unsigned char byte : bits)
        for (const int digit : {byte >> 4, byte & 15})
            token += "0123456789abcdef"[digit];
    return token;
}
} // namespace Monitor
