#include "nodes/dds/SequenceTracker.h"

#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxEndpoints = 1024;
constexpr std::uint64_t maxMissed = 1ULL << 32U; // at once: 49 days of a thousand samples a second

} // namespace

void SequenceTracker::introduce(std::uint64_t endpoint, const Guid& guid)
{
    const auto before = std::ranges::find_if(
        _endpoints, [&](const auto& known) { return guid != Guid{} && known.second._guid == guid; });
    Last last{._guid = guid};
    if (before != _endpoints.end()) {
        last = before->second;
        _endpoints.erase(before);
    } else if (_endpoints.size() == maxEndpoints) {
        _endpoints.erase(
            std::ranges::min_element(_endpoints, {}, [](const auto& known) { return known.second._turn; }));
    }
    last._turn = ++_turn;
    _endpoints[endpoint] = last;
}

SequenceTracker::Verdict SequenceTracker::note(const Writer& writer, std::uint64_t number)
{
    if (number == 0)
        return {true, 0};
    if (!knows(writer._endpoint))
        introduce(writer._endpoint, {});
    Last& last = _endpoints[writer._endpoint];
    last._turn = ++_turn;
    const bool isSame = last._id == writer._id && last._number != 0;
    const auto before = isSame ? std::optional(last._number) : findEarlier(writer._id, number);
    if (before && number <= *before)
        return {false, 0};
    last._id = writer._id;
    last._number = number;
    const std::uint64_t missed = before ? number - *before - 1 : 0;
    return {true, missed <= maxMissed ? missed : 0};
}

std::optional<std::uint64_t> SequenceTracker::findEarlier(std::uint64_t id, std::uint64_t number) const
{
    std::optional<std::uint64_t> found;
    for (const auto& [endpoint, last] : _endpoints)
        if (last._id == id && last._number != 0 && last._number <= number)
            found = std::max(found.value_or(0), last._number);
    return found;
}

} // namespace Trovio::Nodes
