#include "monitor/mcap/write/OutputFile.h"

#include "explain/text/Escape.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace Monitor::Mcap {

namespace {

std::error_code lastError()
{
    return {errno, std::generic_category()};
}

// The disk begins with one while the next one is copied to the system.
constexpr std::size_t piece = 1024UL * 1024;

class DiskFile final : public OutputFile {
public:
    explicit DiskFile(int file) : _file(file) {}
    ~DiskFile() override { ::close(_file); }
    DiskFile(const DiskFile&) = delete;
    DiskFile& operator=(const DiskFile&) = delete;

    std::error_code write(std::uint64_t offset, ByteView bytes) override
    {
        while (!bytes.empty()) {
            const auto place = static_cast<off_t>(offset);
            const ssize_t written = pwrite(_file, bytes.data(), std::min(bytes.size(), piece), place);
            if (written < 0 && errno == EINTR)
                continue;
            if (written < 0)
                return lastError();
            if (static_cast<std::size_t>(written) == piece)
                sync_file_range(_file, place, written, SYNC_FILE_RANGE_WRITE); // where it fails sync() will, too
            offset += static_cast<std::uint64_t>(written);
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        }
        return {};
    }

    std::error_code setSize(std::uint64_t size) override
    {
        return ftruncate(_file, static_cast<off_t>(size)) == 0 ? std::error_code() : lastError();
    }

    // Where there can be no more threads, it is done by who waits for it.
    std::future<std::error_code> sync() override
    {
        return std::async(std::launch::async | std::launch::deferred,
                          [file = _file] { return fdatasync(file) == 0 ? std::error_code() : lastError(); });
    }

    std::uint64_t room() const override
    {
        struct statvfs system = {};
        return fstatvfs(_file, &system) == 0 ? std::uint64_t{system.f_bavail} * system.f_frsize
                                             : std::numeric_limits<std::uint64_t>::max();
    }

private:
    const int _file;
};

[[noreturn]] void refuse(const std::string& path, const char* what)
{
    throw std::runtime_error("recording " + Explain::inQuotes(path) + ' ' + what);
}

// A name survives a power cut only once its folder is on the disk.
void syncFolderOf(const std::string& path)
{
    const auto folder = std::filesystem::path(path).parent_path();
    const int file = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (file < 0)
        return;
    fsync(file);
    ::close(file);
}

const char* reasonOf(int error)
{
    return error == EEXIST   ? "exists; recordings are not written over: name another file or remove it"
           : error == ENOENT ? "cannot be opened: there is no such file or folder"
           : error == EISDIR ? "is a folder; name a file in it"
           : error == EACCES ? "cannot be opened: its rights do not allow it"
           : error == EROFS  ? "cannot be written: its file system is mounted read-only"
           : error == ENOSPC ? "cannot be made: its file system is full"
                             : "cannot be opened";
}

std::unique_ptr<OutputFile> opened(const std::string& path, int flags)
{
    const int file = path.find('\0') == std::string::npos ? ::open(path.c_str(), flags | O_CLOEXEC, 0666) : -1;
    if (file < 0)
        refuse(path, reasonOf(errno));
    auto result = std::make_unique<DiskFile>(file);
    struct stat facts = {};
    if (fstat(file, &facts) != 0 || !S_ISREG(facts.st_mode))
        refuse(path, "is no ordinary file, and only such can be read back");
    if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        refuse(path, "is being written by another program; end that one first");
    return result;
}
} // namespace

std::unique_ptr<OutputFile> OutputFile::create(const std::string& path)
{
    auto file = opened(path, O_RDWR | O_CREAT | O_EXCL);
    syncFolderOf(path);
    return file;
}

std::unique_ptr<OutputFile> OutputFile::open(const std::string& path)
{
    return opened(path, O_RDWR);
}
} // namespace Monitor::Mcap
