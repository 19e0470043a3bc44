#include "monitor/mcap/read/InputFile.h"

#include "explain/text/Escape.h"

#include <cerrno>
#include <fcntl.h>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace Monitor::Mcap {

namespace {

class DiskInput final : public InputFile {
public:
    DiskInput(int file, std::uint64_t size) : _file(file), _size(size) {}
    ~DiskInput() override { ::close(_file); }
    DiskInput(const DiskInput&) = delete;
    DiskInput& operator=(const DiskInput&) = delete;

    std::uint64_t size() const override { return _size; }

    bool read(std::uint64_t offset, std::span<std::byte> bytes) override
    {
        while (!bytes.empty()) {
            const ssize_t got = pread(_file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (got < 0 && errno == EINTR)
                continue;
            if (got <= 0)
                return false;
            offset += static_cast<std::uint64_t>(got);
            bytes = bytes.subspan(static_cast<std::size_t>(got));
        }
        return true;
    }

    bool isBeingWritten() const override
    {
        if (flock(_file, LOCK_SH | LOCK_NB) != 0)
            return errno == EWOULDBLOCK;
        flock(_file, LOCK_UN);
        return false;
    }

private:
    const int _file;
    const std::uint64_t _size;
};

[[noreturn]] void refuse(const std::string& path, const std::string& why)
{
    throw std::runtime_error("recording " + Explain::inQuotes(path) + " cannot be read: " + why);
}
} // namespace

std::unique_ptr<InputFile> InputFile::open(const std::string& path)
{
    // Not to wait where it is a pipe without a writer.
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (file < 0)
        refuse(path, std::generic_category().message(errno));
    struct stat facts = {};
    const bool known = fstat(file, &facts) == 0;
    auto result = std::make_unique<DiskInput>(file, known ? static_cast<std::uint64_t>(facts.st_size) : 0);
    if (!known || !S_ISREG(facts.st_mode))
        refuse(path, "it is no ordinary file; save it as one first");
    return result;
}
} // namespace Monitor::Mcap
