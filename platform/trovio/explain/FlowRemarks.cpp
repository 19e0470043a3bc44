#include "trovio/explain/FlowRemarks.h"

#include "trovio/Node.h"
#include "trovio/explain/PathSearch.h"
#include "trovio/messages/TimeText.h"
#include <algorithm>
#include <cmath>

namespace Trovio {

std::optional<double> FlowRemarks::ageOf(double stamp) const
{
    const bool isTold = std::isfinite(stamp) && stamp != 0.0 && stamp <= _now + StampWatch::Tolerance;
    return isTold ? std::optional(_now - stamp) : std::nullopt;
}

std::string FlowRemarks::clocks(double stamp) const
{
    return "its stamp says " + dateOf(Time(stamp)) + ", the clock of this machine " + dateOf(Time(_now));
}

NodeState FlowRemarks::stateOf(const SlotView& home)
{
    const Node* const node = home._scope->getNode();
    return node ? node->askState(*home._ref._slot) : NodeState();
}

std::string FlowRemarks::fromNode(const SlotView& home)
{
    std::string text;
    if (const Node* const node = home._scope->getNode())
        for (const RemarkInfo& remark : node->askRemarks())
            if (remark._slot == home._label)
                text += "; " + remark._text;
    return text;
}

std::string FlowRemarks::recovery(const SlotView& home) const
{
    const NodeState state = stateOf(home);
    return state._overcome.empty() ? std::string()
                                   : "; node '" + _slots.nameOf(*home._scope) + "' is " + state.describe(Time(_now));
}

std::string FlowRemarks::losses(const SlotView& home) const
{
    const InSlotActivity in = home._ref.in()->getActivity();
    std::string text;
    if (in._counts.overwritten != 0)
        text = "; of " + std::to_string(in._counts.stored) + " that came to '" + _slots.labelOf(home) + "' " +
               std::to_string(in._counts.overwritten) + " were overwritten before they were read";
    return text + shortfalls(home);
}

std::string FlowRemarks::shortfalls(const SlotView& home) const
{
    const InSlotActivity in = home._ref.in()->getActivity();
    std::string text;
    if (in._notStored != 0)
        text += "; records not stored in '" + _slots.labelOf(home) +
                "' for want of memory: " + std::to_string(in._notStored) + "; shorter values or more memory help";
    if (in._cutShort != 0)
        text += "; frames that left records of '" + _slots.labelOf(home) +
                "' to the next: " + std::to_string(in._cutShort) + "; a larger buffer or a slower source helps";
    return text;
}

std::string FlowRemarks::rivals(const SlotView& home) const
{
    const SlotViewList producers = producersOf(home);
    if (producers.size() < 2)
        return {};
    std::string text = "; " + std::to_string(producers.size()) + " write into '" + _slots.labelOf(home) + "':";
    for (const SlotView* producer : producers)
        text += (producer == producers.front() ? " '" : ", '") + _slots.labelOf(*producer) + "' " +
                std::to_string(producer->_ref.out()->getWritten());
    return text;
}

SlotViewList FlowRemarks::producersOf(const SlotView& home)
{
    SlotViewList producers;
    forEachView(home, [&](const SlotView& view) {
        for (const ResolvedRoute* route : view._scope->getResolvedRoutes().under(view._label)) {
            const SlotView* const from = &route->_source->home();
            if (!route->_route->isForTools() && view._scope->getConnector().whyApart(*route, view).empty() &&
                std::ranges::find(producers, from) == producers.end())
                producers.push_back(from);
        }
    });
    return producers;
}

} // namespace Trovio
