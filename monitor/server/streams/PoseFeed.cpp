#include "monitor/server/streams/PoseFeed.h"

#include "explain/text/Escape.h"

#include <utility>

namespace Monitor {

void PoseFeed::setSlots(const std::vector<std::string>& labels)
{
    const auto gone = std::exchange(_labels, {labels.begin(), labels.end()});
    for (const std::string& label : gone) {
        if (_labels.contains(label))
            continue;
        if (_watched.erase(label) != 0)
            _watches.remove(label, *this);
        _poses.forget(label);
        _problems.erase(label);
    }
    if (!_viewers.empty())
        watchAll();
}

void PoseFeed::watchAll()
{
    for (const std::string& label : _labels)
        if (!_watched.contains(label) && _watches.add(label, *this))
            _watched.insert(label);
}

void PoseFeed::add(PoseViewer& viewer)
{
    _viewers.insert(&viewer);
    for (const auto& [label, problem] : _problems)
        viewer.hearWhyNone(problem);
    if (_poses.takeNewest(_newest._cdr))
        viewer.takePoses(_newest);
    watchAll();
}

void PoseFeed::remove(PoseViewer& viewer)
{
    if (_viewers.erase(&viewer) == 0 || !_viewers.empty())
        return;
    _watches.removeAll(*this);
    _watched.clear();
    _problems.clear();
    _poses = {};
}

void PoseFeed::take(const SeenRecord& seen)
{
    _newest._arrival = seen._record._arrival;
    const std::string problem = _poses.note(seen._label, seen._codec, seen._record._cdr, seen._record._stamp);
    if (problem.empty() || _problems.contains(seen._label))
        return;
    const std::string text = "no pose of " + Explain::inQuotes(seen._label) + ": " + problem;
    _problems.emplace(seen._label, text);
    for (PoseViewer* const viewer : _viewers)
        viewer->hearWhyNone(text);
}

void PoseFeed::endRound()
{
    const std::uint64_t missed = queue().dropped() - std::exchange(_told, queue().dropped());
    const bool any = _poses.take(_newest._cdr);
    for (PoseViewer* const viewer : _viewers) {
        if (missed != 0)
            viewer->missPoses(missed);
        if (any)
            viewer->takePoses(_newest);
    }
}
} // namespace Monitor
