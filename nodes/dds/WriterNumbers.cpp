#include "nodes/dds/WriterNumbers.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t mostWriters = 64;

} // namespace

WriterNumbers::Verdict WriterNumbers::note(std::uint64_t writer, std::uint64_t number)
{
    if (number == 0)
        return {true, 0};
    ++_turn;
    const auto found = _last.find(writer);
    if (found == _last.end()) {
        if (_last.size() == mostWriters)
            forgetOne();
        _last[writer] = {number, _turn};
        return {true, 0};
    }
    Last& last = found->second;
    last._turn = _turn;
    if (number <= last._number)
        return {false, 0};
    const std::uint64_t missed = number - last._number - 1;
    last._number = number;
    return {true, missed};
}

void WriterNumbers::forgetOne()
{
    _last.erase(std::min_element(_last.begin(), _last.end(),
                                 [](const auto& a, const auto& b) { return a.second._turn < b.second._turn; }));
}

} // namespace Trovio::Nodes
