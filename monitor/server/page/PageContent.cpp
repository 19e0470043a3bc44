#include "monitor/server/page/PageContent.h"

#include "explain/text/Escape.h"
#include "osg/Log.h"
#include "osg/LogMessage.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace Monitor {
namespace {

namespace Files = std::filesystem;

void warn(const std::string& text)
{
    osg::logText(osg::LogWarning, "Monitor", "monitor", text, osg::SourcePlace::current());
}

const char* typeOf(const std::string& name)
{
    return name.ends_with(".html")  ? "text/html; charset=utf-8"
           : name.ends_with(".css") ? "text/css; charset=utf-8"
                                    : "text/javascript; charset=utf-8";
}

// FNV-1a of 64 bits.
std::string tagOf(const std::string& text)
{
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001b3;
    std::array<char, 24> tag{};
    std::snprintf(tag.data(), tag.size(), "\"%016" PRIx64 "\"", hash);
    return tag.data();
}

/// Of a file below the folder of scripts, folders between them included.
bool isScriptName(const std::string& name)
{
    static constexpr std::string_view ending = ".js",
                                      allowed = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-/";
    return name.ends_with(ending) && name.size() > ending.size() &&
           name.find_first_not_of(allowed) == name.size() - ending.size();
}
} // namespace

std::size_t PageContent::bytes() const
{
    std::size_t bytes = 0;
    for (const auto& [path, file] : _files)
        bytes += file._text.size();
    return bytes;
}

void PageContent::add(const std::string& path, const std::string& name)
{
    const Files::path place = Files::path(_folder) / name;
    std::error_code none;
    if (!Files::is_regular_file(place, none))
        return;
    const std::size_t room = MaxBytes - bytes();
    std::string text(std::min<std::uintmax_t>(Files::file_size(place, none), room + 1), '\0');
    std::ifstream file(place, std::ios::binary);
    if (text.size() > room || !file.read(text.data(), static_cast<std::streamsize>(text.size())))
        return warn("the page does without " + Explain::inQuotes(place.string()) +
                    ", which cannot be read or makes the page larger than " + std::to_string(MaxBytes >> 20) + " MiB");
    std::string tag = tagOf(text);
    _files[path] = {typeOf(name), std::move(tag), std::move(text)};
}

void PageContent::addScripts()
{
    std::error_code none;
    std::vector<std::string> names;
    const Files::path scripts = Files::path(_folder) / "js";
    for (Files::recursive_directory_iterator entry(scripts, none), end; !none && entry != end; entry.increment(none))
        if (std::string name = entry->path().lexically_relative(scripts).string(); isScriptName(name))
            names.push_back(std::move(name));
    if (none)
        warn("the page may do without scripts: " + Explain::inQuotes(scripts.string()) +
             " cannot be read: " + none.message());
    std::ranges::sort(names);
    if (names.size() > MaxScripts) {
        warn("the page takes " + std::to_string(MaxScripts) + " of the " + std::to_string(names.size()) +
             " scripts in " + Explain::inQuotes(_folder + "/js"));
        names.resize(MaxScripts);
    }
    for (const std::string& name : names)
        add("/js/" + name, "js/" + name);
}

PageContent PageContent::read(const std::vector<std::string>& folders)
{
    PageContent page;
    std::error_code none;
    const auto found = std::ranges::find_if(folders, [&none](const std::string& folder) {
        return Files::is_regular_file(Files::path(folder) / "index.html", none);
    });
    if (found == folders.end())
        return page;
    page._folder = *found;
    page.add("/", "index.html");
    page.add("/style.css", "style.css");
    for (const char* const part : {"uplot.js", "uplot.css", "three.js", "three.core.js", "viz.js"})
        page.add(std::string("/parts/") + part, std::string("parts/") + part);
    page.addScripts();
    return page;
}
} // namespace Monitor
