#include "host/replay/FieldLines.h"

#include "explain/text/Escape.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace Host {

using namespace Explain;

namespace {

class Printed final : public FieldLines {
public:
    bool put(std::uint64_t, std::string_view lines) override
    {
        return std::fwrite(lines.data(), 1, lines.size(), stdout) == lines.size();
    }
    std::string finish() override
    {
        return std::fflush(stdout) == 0 && !std::ferror(stdout) ? "" : "standard output cannot be written to";
    }
};

class Written final : public FieldLines {
public:
    explicit Written(const std::string& path) : _path(path), _file(draft(), std::ios::binary | std::ios::trunc)
    {
        if (!_file)
            throw std::runtime_error(failure("made"));
    }
    ~Written() override { std::remove(draft().c_str()); }

    bool put(std::uint64_t, std::string_view lines) override
    {
        _file.write(lines.data(), static_cast<std::streamsize>(lines.size()));
        return _file.good();
    }
    std::string finish() override
    {
        _file.close();
        return _file && std::rename(draft().c_str(), _path.c_str()) == 0 ? "" : failure("written");
    }

private:
    std::string draft() const { return _path + ".new"; }
    std::string failure(const char* done) const
    {
        return escaped(_path) + ": cannot be " + done + ": " + std::strerror(errno);
    }

    const std::string _path;
    std::ofstream _file;
};
} // namespace

std::unique_ptr<FieldLines> FieldLines::print()
{
    return std::make_unique<Printed>();
}

std::unique_ptr<FieldLines> FieldLines::write(const std::string& path)
{
    return std::make_unique<Written>(path);
}
} // namespace Host
