#include "monitor/codec/CdrWriter.h"

#include <limits>
#include <stdexcept>

namespace Monitor {

void CdrWriter::putCount(std::size_t count)
{
    if (count > std::numeric_limits<std::uint32_t>::max())
        throw std::length_error(std::to_string(count) + " elements do not fit into a message");
    put(static_cast<std::uint32_t>(count));
}

void CdrWriter::putText(std::string_view text)
{
    putCount(text.size() + 1);
    putRun<char>(text.data(), text.size());
    put('\0');
}

} // namespace Monitor
