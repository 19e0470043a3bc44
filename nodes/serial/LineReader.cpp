#include "nodes/serial/LineReader.h"

#include <algorithm>
#include <utility>

namespace Trovio::Nodes {

void LineReader::add(std::span<const char> bytes, const Visit& visit)
{
    while (!bytes.empty()) {
        const auto stop = std::ranges::find_if(bytes, [](char byte) { return byte == '\n' || byte == '\r'; });
        const auto count = static_cast<std::size_t>(stop - bytes.begin());
        _isTooLong = _isTooLong || _line.size() + count > MaxLine;
        if (!_isTooLong)
            _line.append(bytes.data(), count);
        if (stop == bytes.end())
            return;
        bytes = bytes.subspan(count + 1);
        end(visit);
    }
}

void LineReader::end(const Visit& visit)
{
    const bool isTooLong = std::exchange(_isTooLong, false);
    const bool isSkipped = std::exchange(_skips, false);
    // The line is empty when visit() throws, too.
    struct Clear {
        std::string& _text;
        ~Clear() { _text.clear(); }
    } const clear{_line};
    if (isSkipped)
        return;
    if (isTooLong)
        visit(std::nullopt);
    else if (_line.find_first_not_of(" \t") != _line.npos)
        visit(_line);
}

void LineReader::restart(bool skipsFirst)
{
    _line.clear();
    _isTooLong = false;
    _skips = skipsFirst;
}

} // namespace Trovio::Nodes
