#pragma once

#include <functional>
#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace osg {

/// Collects what is written to it and hands on each line, with its line end, as soon as it is complete.
/// A flush hands on nothing: a line comes out whole or not at all.
class LineBuffer final : public std::streambuf {
public:
    using Sink = std::function<void(std::string_view line)>;
    explicit LineBuffer(Sink sink);

protected:
    int_type overflow(int_type character) override;
    std::streamsize xsputn(const char* text, std::streamsize size) override;

private:
    void append(std::string_view text);

    Sink _sink;
    std::string _pending;
};

/// A stream on a LineBuffer. Threads: one at a time; the log's streams are used under the log lock.
class LineStream final : public std::ostream {
public:
    explicit LineStream(LineBuffer::Sink sink) : std::ostream(nullptr), _buffer(std::move(sink)) { rdbuf(&_buffer); }

private:
    LineBuffer _buffer;
};

} // namespace osg
