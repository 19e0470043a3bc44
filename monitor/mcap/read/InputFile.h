#pragma once

#include "monitor/mcap/format/Format.h"

#include <memory>

namespace Monitor::Mcap {

/// Where a recording is read from. Threads: one at a time; may block for the disk.
class InputFile {
public:
    virtual ~InputFile() = default;
    /// Bytes of it when it was opened; it may grow, and its end be written over, while it is read.
    virtual std::uint64_t size() const = 0;
    /// Whether all of `bytes` could be filled from `offset` on.
    virtual bool read(std::uint64_t offset, std::span<std::byte> bytes) = 0;
    /// Whether a program is writing it just now.
    virtual bool isBeingWritten() const { return false; }

    /// Throws std::runtime_error, with what helps, where it cannot be read.
    static std::unique_ptr<InputFile> open(const std::string& path);
};

/// One in memory, which stays with the caller.
class MemoryInput final : public InputFile {
public:
    explicit MemoryInput(ByteView bytes) : _bytes(bytes) {}
    std::uint64_t size() const override { return _bytes.size(); }
    bool read(std::uint64_t offset, std::span<std::byte> bytes) override
    {
        if (offset > _bytes.size() || bytes.size() > _bytes.size() - offset)
            return false;
        const ByteView from = _bytes.subspan(static_cast<std::size_t>(offset), bytes.size());
        std::copy(from.begin(), from.end(), bytes.begin());
        return true;
    }

private:
    const ByteView _bytes;
};
} // namespace Monitor::Mcap
