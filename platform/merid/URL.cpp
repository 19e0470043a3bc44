#include "merid/URL.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <vector>

namespace Merid {

namespace {

const std::string noText;

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// -1 when it is no hexadecimal digit.
int hexValue(char c)
{
    if (isDigit(c))
        return c - '0';
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

bool isUrlCharacter(char c)
{
    return isLetter(c) || isDigit(c) ||
           (c != '\0' && std::string_view("-._~:/?#[]@!$&'()*+,;=").find(c) != std::string_view::npos);
}

std::string hexText(char c)
{
    static constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(c);
    return {'%', digits[byte >> 4U], digits[byte & 0xFU]};
}

/// Long texts are cut, so that a message stays readable; a zero byte would end it.
std::string quoted(std::string_view text)
{
    constexpr std::size_t maxShown = 200;
    std::string result = "'";
    for (const char c : text.substr(0, maxShown))
        result += c == '\0' ? hexText(c) : std::string(1, c);
    return result + (text.size() > maxShown ? "…'" : "'");
}

[[noreturn]] void refuse(std::string_view text, const std::string& problem)
{
    throw std::invalid_argument("URL " + quoted(text) + ": " + problem);
}

/// Nothing but characters of RFC 3986 and %HH from `begin` on.
void checkCharacters(std::string_view text, std::size_t begin)
{
    for (std::size_t i = begin; i < text.size(); ++i) {
        if (text[i] == '%') {
            if (i + 2 >= text.size() || hexValue(text[i + 1]) < 0 || hexValue(text[i + 2]) < 0)
                refuse(text, "the % at position " + std::to_string(i) +
                                 " is not followed by two hexadecimal digits; a % itself is written %25");
            i += 2;
        } else if (!isUrlCharacter(text[i])) {
            refuse(text, "the character at position " + std::to_string(i) + " is not allowed; write it as " +
                             hexText(text[i]));
        }
    }
}

/// Position of the colon behind a scheme; npos when the text does not begin with a scheme.
std::size_t schemeEnd(std::string_view text)
{
    if (text.empty() || !isLetter(text.front()))
        return std::string_view::npos;
    const auto end = std::find_if_not(
        text.begin(), text.end(), [](char c) { return isLetter(c) || isDigit(c) || c == '+' || c == '-' || c == '.'; });
    return end != text.end() && *end == ':' ? static_cast<std::size_t>(end - text.begin()) : std::string_view::npos;
}

/// The text with %HH replaced by the byte it stands for; the text has been checked.
std::string decoded(std::string_view text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%') {
            result += static_cast<char>(hexValue(text[i + 1]) * 16 + hexValue(text[i + 2]));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

/// One part of a relative path, decoded to see what a reader of the path would see.
void checkSegment(std::string_view relative, const std::string& segment)
{
    if (segment.find_first_of(std::string_view("/\\\0", 3)) != std::string::npos)
        refuse(relative, "a relative URL has no encoded /, \\ or zero byte");
}

/// The path without "." and "..".
std::string normalized(std::string_view relative)
{
    std::vector<std::string_view> kept;
    bool folder = false; // the last part names a folder
    for (std::size_t begin = 0; begin <= relative.size();) {
        const std::size_t end = std::min(relative.find('/', begin), relative.size());
        const std::string_view part = relative.substr(begin, end - begin);
        const std::string plain = decoded(part);
        checkSegment(relative, plain);
        folder = plain.empty() || plain == "." || plain == "..";
        if (plain == ".." && kept.empty())
            refuse(relative, "a relative URL may not leave its base by ..");
        if (plain == "..")
            kept.pop_back();
        else if (!folder)
            kept.push_back(part);
        begin = end + 1;
    }
    std::string path;
    for (const std::string_view part : kept)
        path.append(path.empty() ? "" : "/").append(part);
    return folder && !path.empty() ? path + "/" : path;
}

} // namespace

URL::URL(std::string_view text)
{
    const std::size_t colon = schemeEnd(text);
    if (colon == std::string_view::npos)
        refuse(text, "it does not begin with a scheme and a colon, like file: or http:; a scheme is a letter followed "
                     "by letters, digits, +, - and .");
    if (colon + 1 == text.size())
        refuse(text, "nothing follows the scheme; write for example file:. for this folder");
    checkCharacters(text, colon + 1);
    std::string scheme(text.substr(0, colon));
    std::transform(scheme.begin(), scheme.end(), scheme.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c | 0x20) : c; });
    _parts =
        std::make_shared<const Parts>(Parts{std::string(text), std::move(scheme), std::string(text.substr(colon + 1))});
}

const std::string& URL::str() const
{
    return _parts ? _parts->_text : noText;
}

const std::string& URL::scheme() const
{
    return _parts ? _parts->_scheme : noText;
}

const std::string& URL::rest() const
{
    return _parts ? _parts->_rest : noText;
}

URL URL::resolve(std::string_view relative) const
{
    if (empty())
        refuse(relative, "there is no base URL that it could be relative to");
    if (relative.empty())
        refuse(relative, "a relative URL is not empty; write . for the base itself");
    if (relative.front() == '/')
        refuse(relative, "a relative URL does not begin with /");
    if (schemeEnd(relative) != std::string_view::npos)
        refuse(relative, "a relative URL has no scheme; write a colon in its first part as %3A");
    checkCharacters(relative, 0);
    std::string folder = rest().substr(0, rest().find_first_of("?#"));
    if (folder.empty())
        folder = ".";
    if (folder.back() != '/')
        folder += '/';
    return URL(scheme() + ":" + folder + normalized(relative));
}

std::string URL::path() const
{
    if (scheme() != "file")
        refuse(str(), "only a file: URL names a file");
    if (rest().find_first_of("?#") != std::string::npos)
        refuse(str(), "a file name has no query and no fragment; write ? as %3F and # as %23");
    std::string_view name = rest();
    if (name.starts_with("//")) {
        name.remove_prefix(2);
        const std::string_view host = name.substr(0, name.find('/'));
        if (!host.empty() && host != "localhost")
            refuse(str(), "files of another host cannot be read; allowed are no host and localhost");
        name.remove_prefix(host.size());
    }
    const std::string result = decoded(name);
    if (result.empty() || result.find('\0') != std::string::npos)
        refuse(str(), "a file name is not empty and has no zero byte");
    return result;
}

} // namespace Merid
