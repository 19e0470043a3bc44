#include "host/run/FileWatch.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <sys/inotify.h>
#include <system_error>
#include <unistd.h>

namespace Host {
namespace {

constexpr std::uint32_t ofFolder = IN_MOVE_SELF | IN_DELETE_SELF; // and IN_IGNORED, which comes unasked
constexpr std::uint32_t events = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE | ofFolder;

/// Where the name stands, and where the file does that a link leads to.
std::vector<std::filesystem::path> placesOf(const std::string& path)
{
    const std::filesystem::path named = std::filesystem::absolute(path);
    std::error_code ignored;
    const std::filesystem::path real = std::filesystem::canonical(named, ignored);
    return real.empty() || real == named ? std::vector{named} : std::vector{named, real};
}
} // namespace

FileWatch::FileWatch(const std::vector<std::string>& paths) : _descriptor(inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
{
    if (_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "files cannot be watched");
    for (const std::string& path : paths)
        for (const std::filesystem::path& place : placesOf(path)) {
            const int watch = inotify_add_watch(_descriptor, place.parent_path().c_str(), events);
            if (watch < 0) {
                const int error = errno;
                close(_descriptor);
                throw std::system_error(error, std::generic_category(),
                                        "the folder " + place.parent_path().string() + " cannot be watched");
            }
            _names.emplace_back(watch, place.filename().string());
        }
}

FileWatch::~FileWatch()
{
    close(_descriptor);
}

// What was too much for the queue may have been about any file.
bool FileWatch::concerns(int watch, const std::string& name) const
{
    return watch < 0 || std::ranges::find(_names, std::pair(watch, name)) != _names.end();
}

bool FileWatch::takeEvents()
{
    bool isConcerned = false;
    alignas(inotify_event) std::array<char, 16384> bytes; // NOLINT(*-member-init): filled by read
    for (ssize_t count = 0; (count = read(_descriptor, bytes.data(), bytes.size())) > 0;)
        for (const char* at = bytes.data(); at < bytes.data() + count;) {
            const auto* const event = reinterpret_cast<const inotify_event*>(at);
            isConcerned = isConcerned || (event->mask & (ofFolder | IN_IGNORED)) != 0 ||
                          concerns(event->wd, event->len > 0 ? event->name : "");
            at += sizeof(inotify_event) + event->len;
        }
    return isConcerned;
}
} // namespace Host
