#include "monitor/server/doors/SocketFolder.h"

#include "explain/text/Escape.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Monitor {

std::string socketFolder()
{
    std::error_code none;
    if (const char* const runtime = std::getenv("XDG_RUNTIME_DIR");
        runtime != nullptr && *runtime == '/' && std::filesystem::is_directory(runtime, none))
        return std::string(runtime) + "/ostrel";
    const auto temporary = std::filesystem::temp_directory_path(none);
    return (none ? std::string("/tmp") : temporary.string()) + "/ostrel-" + std::to_string(geteuid());
}

// Whoever may write into the folder could put a socket of his own in the place of ours.
std::string makeSocketFolder(const std::string& folder)
{
    const std::string name = "the folder " + Explain::inQuotes(folder);
    if (mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST)
        return name + " cannot be made: " + std::strerror(errno);
    struct stat found {};
    if (lstat(folder.c_str(), &found) != 0)
        return name + " cannot be looked at: " + std::strerror(errno);
    if (!S_ISDIR(found.st_mode) || found.st_uid != geteuid())
        return name + " is no folder of this user; remove it, or set XDG_RUNTIME_DIR to a folder that is";
    if ((found.st_mode & 077) != 0 && chmod(folder.c_str(), 0700) != 0)
        return name + " cannot be closed to others: " + std::strerror(errno);
    return {};
}
} // namespace Monitor
