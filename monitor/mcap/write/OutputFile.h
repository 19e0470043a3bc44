#pragma once

#include "monitor/mcap/format/Format.h"

#include <future>
#include <memory>
#include <system_error>

namespace Monitor::Mcap {

/// The file that a recording is written to. Tests hand in one that logs what is done to it, or fails.
/// Threads: one at a time. Each operation, and waiting for what sync() returns, may block for as long as the disk
/// takes.
class OutputFile {
public:
    virtual ~OutputFile() = default;

    /// Writes all the bytes in one go, over what stands there. After an error any part of them may stand.
    virtual std::error_code write(std::uint64_t offset, ByteView bytes) = 0;
    virtual std::error_code setSize(std::uint64_t size) = 0;
    /// Ready once all that was written before the call is on the disk; more may be written meanwhile. One at a time.
    virtual std::future<std::error_code> sync() = 0;
    /// Bytes that still fit; the largest number where nobody knows.
    virtual std::uint64_t room() const = 0;

    /// A file that does not exist yet, which no other program finishes or writes to meanwhile. Throws
    /// std::runtime_error, with what helps, where it cannot be made.
    static std::unique_ptr<OutputFile> create(const std::string& path);
    /// One that exists, to be mended. Throws likewise, also where another program is writing to it.
    static std::unique_ptr<OutputFile> open(const std::string& path);
};
} // namespace Monitor::Mcap
