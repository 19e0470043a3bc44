// First line: a URL. Second line: what is looked for below it.
#include "fuzz/Fuzz.h"
#include "merid/URL.h"
#include <functional>
#include <optional>
#include <stdexcept>

namespace Fuzz {

namespace {

using Merid::URL;

/// What make() returns; nothing where it refuses, which it says in printable words.
template <class Make>
auto attempt(Make make) -> std::optional<decltype(make())>
{
    try {
        return make();
    } catch (const std::invalid_argument& refusal) {
        require(refusal.what()[0] != '\0', "a refusal says why");
        return std::nullopt;
    }
}

/// No part of the path, read as a file system reads it, leads up.
bool staysBelow(std::string_view folder, std::string_view path)
{
    if (!path.starts_with(folder))
        return false;
    path.remove_prefix(folder.size());
    while (!path.empty()) {
        const std::string_view part = path.substr(0, path.find('/'));
        if (part == "..")
            return false;
        path.remove_prefix(std::min(part.size() + 1, path.size()));
    }
    return true;
}

void checkBelow(const URL& base, std::string_view relative)
{
    const auto below = attempt([&] { return base.resolve(relative); });
    if (!below)
        return;
    require(below->scheme() == base.scheme(), "a URL below another has its scheme");
    require(URL(below->str()) == *below, "a URL that was resolved is a URL");
    const auto folder = attempt([&] { return base.resolve(".").path(); });
    const auto file = attempt([&] { return below->path(); });
    if (folder && file)
        require(staysBelow(*folder, *file), "a file below a folder stays below it");
}

} // namespace

void runOnce(std::string_view input)
{
    const std::string_view text = takeLine(input);
    const auto url = attempt([text] { return URL(text); });
    require(!attempt([&] { return URL().resolve(input); }), "nothing is below no URL");
    if (!url)
        return;
    require(url->str() == text, "a URL is the text that it was made of");
    require(text.substr(url->scheme().size() + 1) == url->rest(), "scheme and rest make the URL");
    require(URL(url->scheme() + ":" + url->rest()).rest() == url->rest(), "the parts make a URL again");
    attempt([&] { return url->path(); });
    checkBelow(*url, takeLine(input));
}

} // namespace Fuzz
