#include "nodes/mqtt/PasswordFile.h"

#include "nodes/shared/FileDescriptor.h"
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxPassword = 1024;

PasswordText refusal(const std::string& path, const std::string& problem)
{
    return {{}, "the password file '" + path + "' " + problem};
}

} // namespace

PasswordText readPasswordFile(const std::string& path)
{
    // Not to wait for whoever might write into a pipe.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat state {};
    if (!file.isOpen() || ::fstat(file.get(), &state) != 0)
        return refusal(path, std::string("cannot be read: ") + std::strerror(errno));
    if (!S_ISREG(state.st_mode))
        return refusal(path, "is no plain file");
    if ((state.st_mode & S_IRWXO) != 0)
        return refusal(path, "is open to every user; chmod o-rwx it");
    std::array<char, maxPassword + 1> bytes{};
    const auto count = ::read(file.get(), bytes.data(), bytes.size());
    if (count < 0)
        return refusal(path, std::string("cannot be read: ") + std::strerror(errno));
    const std::string_view text(bytes.data(), static_cast<std::size_t>(count));
    const std::string_view line = text.substr(0, text.find_first_of("\r\n"));
    if (line.empty() || line.size() > maxPassword || line.find('\0') != line.npos)
        return refusal(path, "has no password of 1 to " + std::to_string(maxPassword) + " bytes in its first line");
    return {std::string(line), {}};
}

} // namespace Trovio::Nodes
