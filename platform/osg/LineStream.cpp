#include "osg/LineStream.h"

#include <utility>

namespace osg {

LineBuffer::LineBuffer(Sink sink) : _sink(std::move(sink)) {}

LineBuffer::int_type LineBuffer::overflow(int_type character)
{
    if (!traits_type::eq_int_type(character, traits_type::eof())) {
        const char one = traits_type::to_char_type(character);
        append({&one, 1});
    }
    return traits_type::not_eof(character);
}

std::streamsize LineBuffer::xsputn(const char* text, std::streamsize size)
{
    append({text, static_cast<std::size_t>(size)});
    return size;
}

void LineBuffer::append(std::string_view text)
{
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        _pending += text.substr(0, end + 1);
        const std::string line = std::exchange(_pending, {});
        _sink(line);
        text.remove_prefix(end + 1);
    }
    _pending += text;
}

} // namespace osg
