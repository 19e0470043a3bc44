#pragma once

#include "monitor/codec/CdrWriter.h"

#include <span>
#include <string>

namespace Monitor {

/// Reads a message that was written as CDR by somebody who is not trusted. After the first fault every operation yields
/// zeros and nothing, and the first problem stays.
/// Ownership: refers to the bytes, and so do the texts that it yields.
class CdrReader {
public:
    explicit CdrReader(std::span<const std::byte> message);

    template <class Number>
    requires std::is_arithmetic_v<Number> Number get()
    {
        Number number{};
        getRun<Number>(&number, 1);
        return number;
    }

    /// The other end of CdrWriter::putRun(); untouched after a fault.
    template <class Number>
    void getRun(void* first, std::size_t count)
    {
        if (count == 0)
            return;
        const std::byte* const bytes = take(sizeof(Number), count);
        if (bytes)
            std::memcpy(first, bytes, count * sizeof(Number));
    }

    /// How many elements follow; a fault where fewer bytes are left than so many of `least` bytes take. What it yields
    /// may size memory.
    std::size_t getCount(std::size_t least);
    std::string_view getText();
    /// A run of bytes with its count before it.
    std::span<const std::byte> getBytes();

    void fail(std::string problem);
    bool hasFailed() const { return !_problem.empty(); }
    /// What is wrong, and where; empty while nothing is.
    const std::string& problem() const { return _problem; }
    /// Bytes behind the head that were read.
    std::size_t position() const { return _position; }

private:
    /// The next `count` numbers of `size` bytes; null, and a fault, where there are fewer.
    const std::byte* take(std::size_t size, std::size_t count);

    std::span<const std::byte> _body; // behind the head
    std::size_t _position = 0;
    std::string _problem;
};

} // namespace Monitor
