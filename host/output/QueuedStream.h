#pragma once

#include "host/output/QueuedOutput.h"

#include <ostream>
#include <streambuf>

namespace Host {

/// A stream into a queue. What was put in by one operation that ends a line, or was flushed, is one unit of the queue.
/// Threads: one.
class QueuedStream final : public std::ostream {
public:
    explicit QueuedStream(QueuedOutput& output) : std::ostream(nullptr), _buffer(output) { rdbuf(&_buffer); }

    /// Whether the last unit has been written.
    bool isTaken() const { return _buffer.isTaken(); }

private:
    class Buffer final : public std::streambuf {
    public:
        explicit Buffer(QueuedOutput& output) : _output(output) {}
        bool isTaken() const { return _output.hasWritten(_end); }

    protected:
        int_type overflow(int_type character) override
        {
            if (!traits_type::eq_int_type(character, traits_type::eof())) {
                const char one = traits_type::to_char_type(character);
                xsputn(&one, 1);
            }
            return traits_type::not_eof(character);
        }

        std::streamsize xsputn(const char* text, std::streamsize size) override
        {
            _unit.append(text, static_cast<std::size_t>(size));
            return _unit.ends_with('\n') ? sync(), size : size;
        }

        int sync() override
        {
            if (!_unit.empty())
                _output.put(_unit);
            _unit.clear();
            _end = _output.position();
            return 0;
        }

    private:
        QueuedOutput& _output;
        std::string _unit;
        std::uint64_t _end = 0; // of the last unit
    };

    Buffer _buffer;
};
} // namespace Host
