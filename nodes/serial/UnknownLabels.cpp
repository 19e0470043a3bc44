#include "nodes/serial/UnknownLabels.h"

#include "nodes/serial/LineForm.h"
#include "nodes/shared/Report.h"
#include "trovio/messages/NearestName.h"
#include <algorithm>

namespace Trovio::Nodes {

namespace {

constexpr std::size_t maxDescribed = 3;

/// What the user may write to get the lines.
std::string cureFor(std::string_view label, std::string_view content)
{
    if (!isLineLabel(label))
        return "no slot can have that label";
    std::vector<TextNumber> numbers;
    constexpr const char* types[] = {"Float", "Vec2f", "Vec3f", "Vec4f"};
    const char* type = "String";
    if (!content.empty() && readTextNumbers(content, numbers) && !numbers.empty())
        type = numbers.size() <= std::size(types) ? types[numbers.size() - 1] : "Float[]";
    return "in='" + std::string(label) + " " + type + "' would take it";
}

} // namespace

void UnknownLabels::note(std::string_view label, std::string_view content)
{
    const std::string_view key = label.substr(0, 255); // no slot has a longer one
    bool isFull = false;
    {
        const Ostrel::LockGuard guard(_lock);
        const auto found = _named.find(key);
        isFull = found == _named.end() && _named.size() == MaxNamed;
        if (found != _named.end())
            ++found->second;
        else if (!isFull)
            _named.emplace(key, 1U);
        if (found != _named.end() || (isFull && ++_others > 1))
            return;
    }
    const std::string nearest(nearestName(key, std::vector<std::string_view>(_known.begin(), _known.end())));
    report(osg::LogWarning,
           isFull ? "Serial: " + std::to_string(MaxNamed) +
                        " labels without a slot were named; lines of further ones are only counted"
                  : "Serial: no slot for the label '" + std::string(key) + "'; " + cureFor(label, content) +
                        (nearest.empty() ? "" : "; the nearest label with a slot is '" + nearest + "'"));
}

std::string UnknownLabels::describe() const
{
    const Ostrel::LockGuard guard(_lock);
    std::vector<std::pair<std::uint64_t, std::string_view>> entries;
    std::uint64_t rest = _others;
    for (const auto& [label, count] : _named) {
        entries.emplace_back(count, label);
        rest += count;
    }
    std::ranges::stable_sort(entries, [](const auto& left, const auto& right) { return left.first > right.first; });
    entries.resize(std::min(entries.size(), maxDescribed));
    std::string text;
    for (const auto& [count, label] : entries) {
        text += ", " + std::to_string(count) + " for '" + std::string(label) + "'";
        rest -= count;
    }
    return rest == 0 ? text : text + " and " + std::to_string(rest) + " for others";
}

} // namespace Trovio::Nodes
