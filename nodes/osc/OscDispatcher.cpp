#include "nodes/osc/OscDispatcher.h"

#include "nodes/osc/OscPattern.h"
#include "nodes/shared/Report.h"

namespace Trovio::Nodes {

OscDispatcher::OscDispatcher(const std::vector<OscAddress>& addresses, OscInCounters& counters) : _counters(counters)
{
    _lanes.reserve(addresses.size()); // from here on no lane moves
    for (const OscAddress& address : addresses) {
        _lanes.push_back({address, OscInLane::create(address)});
        _positions.emplace(_lanes.back()._address._address, _lanes.size() - 1);
    }
}

void OscDispatcher::visit(const OscMessage& message)
{
    _counters._messages.add();
    if (isOscPattern(message._address)) {
        visitMatching(message);
        return;
    }
    const auto found = _positions.find(message._address);
    if (found == _positions.end())
        _counters._unknown.add();
    else
        deliver(_lanes[found->second], message);
}

void OscDispatcher::visitMatching(const OscMessage& message)
{
    bool isKnown = false;
    for (Lane& lane : _lanes) {
        if (matchesOscPattern(message._address, lane._address._address)) {
            isKnown = true;
            deliver(lane, message);
        }
    }
    if (!isKnown)
        _counters._unknown.add();
}

void OscDispatcher::deliver(Lane& lane, const OscMessage& message)
{
    if (lane._lane->deliver(message)) {
        _counters._values.add();
        return;
    }
    _counters._mismatched.add();
    if (std::exchange(lane._mismatchReported, true))
        return;
    constexpr std::size_t shown = 64;
    const std::string tags(message._tags.substr(0, shown));
    report(osg::LogWarning, lane._address._address + ": expected " + lane._lane->getExpected() + ", got " +
                                (tags.empty() ? "no arguments" : tags) + (message._tags.size() > shown ? "…" : "") +
                                (tags == lane._lane->getExpected() ? " with numbers that do not fit the blob" : ""));
}

void OscDispatcher::forEachSlot(const std::function<void(const std::string&, BasicOutSlot&)>& use)
{
    for (Lane& lane : _lanes)
        use(lane._address.getLabel(), lane._lane->getSlot());
}

} // namespace Trovio::Nodes
