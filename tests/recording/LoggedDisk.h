#pragma once

#include "monitor/mcap/write/OutputFile.h"

#include <algorithm>
#include <random>
#include <vector>

/// A disk in memory that keeps a log of what was done to one file, and can show the file as it is found when all was
/// cut off at any moment. It can fail, too.
namespace Disk {

using Monitor::Bytes;
using Monitor::Mcap::ByteView;

struct Operation {
    enum class Kind { Write, SetSize, Sync } _kind;
    std::uint64_t _at; // offset; size; of a sync how many operations before it are on the disk
    Bytes _bytes;
};
using Log = std::vector<Operation>;

inline void apply(const Operation& operation, Bytes& file, std::size_t bytes)
{
    if (operation._kind == Operation::Kind::SetSize)
        file.resize(operation._at);
    if (operation._kind != Operation::Kind::Write)
        return;
    file.resize(std::max<std::size_t>(file.size(), operation._at + bytes));
    std::copy_n(operation._bytes.begin(), bytes, file.begin() + static_cast<std::ptrdiff_t>(operation._at));
}

inline Bytes after(const Log& log, std::size_t operations)
{
    Bytes file;
    for (std::size_t i = 0; i < operations; ++i)
        apply(log[i], file, log[i]._bytes.size());
    return file;
}

/// The writer was killed in its operation number `last`: of a write the first pages stand.
inline Bytes afterKill(const Log& log, std::size_t last, std::mt19937& random)
{
    constexpr std::size_t page = 4096;
    Bytes file = after(log, last);
    const Operation& cut = log[last];
    if (cut._kind == Operation::Kind::Write && !cut._bytes.empty()) {
        const std::size_t pages = (cut._at + cut._bytes.size()) / page - cut._at / page;
        const std::size_t end = (cut._at / page + random() % (pages + 1)) * page;
        apply(cut, file, end > cut._at ? end - cut._at : 0);
    }
    return file;
}

/// How many of the first operations are on the disk for certain.
inline std::size_t confirmed(const Log& log, std::size_t operations)
{
    while (operations > 0 && log[operations - 1]._kind != Operation::Kind::Sync)
        --operations;
    return operations > 0 ? log[operations - 1]._at : 0;
}

/// The power went after `operations`. Of those that were not confirmed each reached the disk as a whole, not at all, or
/// in some of its sectors, whatever the others did.
inline Bytes afterPowerCut(const Log& log, std::size_t operations, std::mt19937& random)
{
    constexpr std::size_t sector = 512;
    std::size_t done = confirmed(log, operations);
    Bytes file = after(log, done);
    for (; done < operations; ++done) {
        Bytes before = file;
        const auto fate = random() % 3;
        if (fate > 0)
            apply(log[done], file, log[done]._bytes.size());
        before.resize(file.size());
        for (std::size_t at = 0; fate == 2 && at < file.size(); at += sector)
            if (random() % 2 == 0)
                std::copy_n(before.begin() + static_cast<std::ptrdiff_t>(at), std::min(sector, file.size() - at),
                            file.begin() + static_cast<std::ptrdiff_t>(at));
    }
    return file;
}

class Logged final : public Monitor::Mcap::OutputFile {
public:
    /// Operation number `failing` fails, after half of what it writes.
    explicit Logged(Log& log, std::size_t failing = ~std::size_t{0}) : _log(log), _failing(failing) {}

    std::error_code write(std::uint64_t offset, ByteView bytes) override
    {
        const bool fails = isFailing();
        _log.push_back({Operation::Kind::Write, offset, {bytes.begin(), bytes.end() - (fails ? bytes.size() / 2 : 0)}});
        return verdict(fails);
    }
    std::error_code setSize(std::uint64_t size) override
    {
        const bool fails = isFailing();
        if (!fails)
            _log.push_back({Operation::Kind::SetSize, size, {}});
        return verdict(fails);
    }
    // As late as may be: it is done when somebody waits for it, and for no more than was written when it was begun.
    std::future<std::error_code> sync() override
    {
        return std::async(std::launch::deferred, [this, covered = _log.size()] {
            const bool fails = isFailing();
            if (!fails)
                _log.push_back({Operation::Kind::Sync, covered, {}});
            return verdict(fails);
        });
    }
    std::uint64_t room() const override { return 0; }

private:
    bool isFailing() { return _done++ == _failing; }
    static std::error_code verdict(bool fails)
    {
        return fails ? std::make_error_code(std::errc::no_space_on_device) : std::error_code();
    }

    Log& _log;
    const std::size_t _failing;
    std::size_t _done = 0;
};
} // namespace Disk
