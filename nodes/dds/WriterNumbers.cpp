#include "nodes/dds/WriterNumbers.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t mostEnds = 64;

} // namespace

WriterNumbers::Verdict WriterNumbers::note(std::uint64_t end, std::uint64_t writer, std::uint64_t number)
{
    if (number == 0)
        return {true, 0};
    const auto known = _last.find(end);
    const bool isSame = known != _last.end() && known->second._writer == writer;
    const auto before = isSame ? std::optional(known->second._number) : findEarlier(writer, number);
    if (before && number <= *before)
        return {false, 0};
    if (known == _last.end() && _last.size() == mostEnds)
        forgetOne();
    _last[end] = {writer, number, ++_turn};
    return {true, before ? number - *before - 1 : 0};
}

std::optional<std::uint64_t> WriterNumbers::findEarlier(std::uint64_t writer, std::uint64_t number) const
{
    std::optional<std::uint64_t> found;
    for (const auto& [end, last] : _last)
        if (last._writer == writer && last._number <= number)
            found = std::max(found.value_or(0), last._number);
    return found;
}

void WriterNumbers::forgetOne()
{
    _last.erase(std::min_element(_last.begin(), _last.end(),
                                 [](const auto& a, const auto& b) { return a.second._turn < b.second._turn; }));
}

} // namespace Trovio::Nodes
