#include "trovio/modules/LibraryFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace Trovio {

namespace {

class OpenFile {
public:
    explicit OpenFile(const std::string& path) : _descriptor(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)) {}
    ~OpenFile()
    {
        if (_descriptor >= 0)
            close(_descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return _descriptor >= 0; }
    bool getStatus(struct stat& status) const { return fstat(_descriptor, &status) == 0; }

    bool read(void* target, std::size_t size, std::uint64_t offset) const
    {
        return pread(_descriptor, target, size, static_cast<off_t>(offset)) == static_cast<ssize_t>(size);
    }

private:
    const int _descriptor;
};

const char* kindOf(mode_t mode)
{
    return S_ISFIFO(mode) ? "a pipe" : S_ISDIR(mode) ? "a folder" : S_ISSOCK(mode) ? "a socket" : "a device";
}

/// Whether that many bytes from there on lie in a file of that size.
bool liesWithin(std::uint64_t offset, std::uint64_t length, std::uint64_t size)
{
    return offset <= size && length <= size - offset;
}

bool isOfThisMachine(const Elf64_Ehdr& header)
{
    return std::memcmp(header.e_ident, ELFMAG, SELFMAG) == 0 && header.e_ident[EI_CLASS] == ELFCLASS64 &&
           header.e_ident[EI_DATA] == ELFDATA2LSB && header.e_machine == EM_X86_64 && header.e_type == ET_DYN &&
           header.e_phentsize == sizeof(Elf64_Phdr) && header.e_phnum != 0;
}

/// Whether the loader finds in there what it takes for granted.
bool holdsTables(const OpenFile& file, const Elf64_Phdr& dynamic)
{
    std::vector<Elf64_Dyn> entries(std::min<std::size_t>(dynamic.p_filesz / sizeof(Elf64_Dyn), 1024));
    if (!file.read(entries.data(), entries.size() * sizeof(Elf64_Dyn), dynamic.p_offset))
        return false;
    const auto has = [&entries](Elf64_Sxword tag) {
        return std::any_of(entries.begin(), entries.end(), [tag](const auto& entry) { return entry.d_tag == tag; });
    };
    return has(DT_STRTAB) && has(DT_SYMTAB) && has(DT_NULL);
}

std::string cutAt(std::uint64_t size, std::uint64_t needed)
{
    return "it was cut: it has " + std::to_string(size) + " bytes of at least " + std::to_string(needed);
}

std::string faultOfSegments(const OpenFile& file, const Elf64_Ehdr& header, std::uint64_t size)
{
    std::vector<Elf64_Phdr> segments(header.e_phnum);
    const std::size_t bytes = segments.size() * sizeof(Elf64_Phdr);
    if (!liesWithin(header.e_phoff, bytes, size) || !file.read(segments.data(), bytes, header.e_phoff))
        return cutAt(size, header.e_phoff + bytes);
    bool isLoadable = false;
    for (const Elf64_Phdr& segment : segments) {
        if (segment.p_type != PT_LOAD && segment.p_type != PT_DYNAMIC)
            continue;
        if (!liesWithin(segment.p_offset, segment.p_filesz, size))
            return cutAt(size, segment.p_offset + segment.p_filesz);
        isLoadable = isLoadable || (segment.p_type == PT_DYNAMIC && holdsTables(file, segment));
    }
    return isLoadable ? std::string() : "it is damaged: it has no symbol table that the loader could find";
}

} // namespace

std::string faultOfLibrary(const std::string& path)
{
    const OpenFile file(path);
    struct stat status {};
    if (!file.isOpen() || !file.getStatus(status))
        return std::strerror(errno);
    if (!S_ISREG(status.st_mode))
        return std::string("it is ") + kindOf(status.st_mode) + ", a file is expected";
    const auto size = static_cast<std::uint64_t>(status.st_size);
    Elf64_Ehdr header{};
    if (size < sizeof header)
        return cutAt(size, sizeof header);
    if (!file.read(&header, sizeof header, 0) || !isOfThisMachine(header))
        return "it is no shared library for x86-64 Linux";
    return faultOfSegments(file, header, size);
}

} // namespace Trovio
