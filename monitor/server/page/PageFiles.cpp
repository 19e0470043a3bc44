#include "monitor/server/page/PageFiles.h"

#include "explain/text/Escape.h"

#include <algorithm>

namespace Monitor {
namespace {

constexpr const char* plainText = "text/plain; charset=utf-8";

// Nothing but what comes from here: no script within the page, nothing of another host, no page around it.
constexpr const char* policy = "default-src 'none'; script-src 'self' 'wasm-unsafe-eval'; style-src 'self'; "
                               "connect-src 'self'; img-src 'self' data:; worker-src 'self'; base-uri 'none'; "
                               "form-action 'none'; frame-ancestors 'none'";

// Whether the field If-None-Match names that version.
bool names(const std::string& field, const std::string& tag)
{
    return std::ranges::any_of(readList(field), [&tag](const std::string& known) {
        return known == "*" || known == tag || known == "W/" + tag;
    });
}
} // namespace

bool PageFiles::isOfPage(std::string_view path)
{
    return path == "/" || path == "/style.css" || path.starts_with("/js/") || path.starts_with("/parts/");
}

Answer PageFiles::answer(const RequestHead& head) const
{
    if (head._method != "GET" && head._method != "HEAD")
        return errorAnswer(405, Explain::inQuotes(head._path) + " takes GET and HEAD, not " +
                                    Explain::inQuotes(head._method));
    std::call_once(_once, [this] {
        _page = PageContent::read(_folders);
        _isRead = true;
    });
    const auto found = _page._files.find(head._path);
    if (found == _page._files.end())
        return missing(head._path);
    const PageContent::File& file = found->second;
    const bool isKnown = names(head._knownTags, file._tag);
    return {isKnown ? 304 : 200,
            file._type,
            isKnown ? std::string() : file._text,
            {{"ETag", file._tag},
             {"Cache-Control", "no-cache"},
             {"Content-Security-Policy", policy},
             {"Referrer-Policy", "no-referrer"}}};
}

Answer PageFiles::missing(const std::string& path) const
{
    if (_page._folder.empty()) {
        std::string text = "This host has no page to show: there is no index.html in ";
        for (const std::string& folder : _folders)
            text += (&folder == &_folders.front() ? "" : " or ") + Explain::inQuotes(folder);
        return {404, plainText,
                text + ".\nQuestions are answered all the same, such as /host, /slots, /sensors, /why and /metrics.\n"};
    }
    if (path.starts_with("/parts/"))
        return {404, plainText,
                Explain::inQuotes(path) +
                    " is not installed. What plots, 3D and the graph are drawn with comes by npm: install the package "
                    "npm, and start from the sources with ./run SCENE --monitor, or build the target ostrelPage, "
                    "before the host is installed.\n"};
    return {404, plainText, "the page has no file " + Explain::inQuotes(path) + "\n"};
}
} // namespace Monitor
