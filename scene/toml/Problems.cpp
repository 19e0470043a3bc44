#include "scene/toml/Problems.h"

#include "explain/text/Escape.h"

#include <algorithm>
#include <tuple>

namespace Scenes {

using namespace Explain;

namespace {
constexpr std::size_t maxKept = 20;
}

std::string placeText(const std::string& file, Position position)
{
    const std::string place = escaped(file, 1000);
    return position._line == 0 ? place
                               : place + ":" + std::to_string(position._line) + ":" + std::to_string(position._column);
}

void Problems::add(Position position, std::string_view text)
{
    if (!full())
        _problems.push_back({position, std::string(text)});
    else
        ++_left;
}

bool Problems::full() const
{
    return _problems.size() >= maxKept;
}

std::string Problems::text() const
{
    std::vector<Problem> inOrder = _problems;
    std::stable_sort(inOrder.begin(), inOrder.end(), [](const Problem& a, const Problem& b) {
        return std::tie(a._position._line, a._position._column) < std::tie(b._position._line, b._position._column);
    });
    std::string text;
    for (const Problem& problem : inOrder)
        text += (text.empty() ? "" : "\n") + placeText(_file, problem._position) + ": " + problem._text;
    if (_left != 0)
        text += "\n" + escaped(_file, 1000) + ": and " + std::to_string(_left) + " more";
    return text;
}

void Problems::throwIfAny() const
{
    if (!_problems.empty())
        throw SceneError(text());
}
} // namespace Scenes
