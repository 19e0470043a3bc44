#include "monitor/answer/Standstill.h"

#include "explain/TreeWalk.h"
#include "explain/text/Escape.h"
#include "trovio/Root.h"

#include <algorithm>
#include <set>

namespace Monitor {
namespace {

using Explain::inQuotes;
using Trovio::Explanation;
using Trovio::Verdict;

constexpr std::size_t maxExplained = 100; // pairs that do not connect: each costs a walk through all labels

int rank(Verdict verdict)
{
    constexpr Verdict worstFirst[] = {
        Verdict::TypesDiffer,  Verdict::WrongDirection,  Verdict::Loop,        Verdict::NoSuchLabel,
        Verdict::NoMatch,      Verdict::NoExternalRoute, Verdict::NoRoute,     Verdict::NotMade,
        Verdict::NodeDegraded, Verdict::NotStored,       Verdict::Interrupted, Verdict::Filtered,
        Verdict::NeverWritten, Verdict::Stale,           Verdict::Unread,      Verdict::Overwritten};
    return static_cast<int>(std::ranges::find(worstFirst, verdict) - std::begin(worstFirst));
}

/// What stands behind "nothing flows from 'a' to 'b', never written: ", for it is the same for all pairs with that
/// cause.
std::string causeOf(const Explanation& explanation)
{
    const std::string verdict = std::string(", ") + toString(explanation._verdict) + ": ";
    const std::size_t at = explanation._text.find(verdict);
    return at == std::string::npos ? explanation._text : explanation._text.substr(at);
}

bool isDegraded(const SlotMap::Place& place)
{
    return place._node && place._node->_state._degraded;
}

/// Whether it is worth asking why: most pairs of a tree are well, and each question locks it.
bool isSuspect(const SlotMap::Joint& joint, double now, double staleAfter)
{
    const Trovio::OutSlotActivity& out = *joint._from->_slot->_out;
    const Trovio::InSlotActivity& in = *joint._to->_slot->_in;
    const double behind = in._stamps._last.getSeconds() - in._lastTaken.getSeconds();
    const bool isTaken = in._counts.taken != 0 && !in._readerInterrupted && behind > 0 && behind <= staleAfter;
    return isDegraded(*joint._from) || isDegraded(*joint._to) || out._written == 0 ||
           now - out._stamps._last.getSeconds() > staleAfter || (in._counts.waiting != 0 && !isTaken) ||
           in._notStored != 0;
}

class StandstillSearch {
public:
    StandstillSearch(const SlotMap& map, double staleAfter) : _map(map), _staleAfter(staleAfter) {}

    std::vector<Standstill> find()
    {
        for (const SlotMap::Gap& gap : _map.gaps())
            addGap(gap);
        for (const SlotMap::Joint& joint : _map.joints())
            addJoint(joint);
        addNodes();
        for (const SlotMap::Place& place : _map.all())
            addLonely(place);
        std::ranges::stable_sort(_found, {}, [](const Standstill& still) { return rank(still._cause._verdict); });
        return std::move(_found);
    }

private:
    void addGap(const SlotMap::Gap& gap)
    {
        Explanation cause{Verdict::NoRoute, gap._reason, {}};
        if (_explained++ < maxExplained)
            cause = Trovio::Root::get().explain(gap._from, gap._to, _staleAfter);
        if (cause._verdict == Verdict::Flowing) // by another way, but not by this route
            cause = {Verdict::NoRoute, gap._reason, {}};
        add({gap._from, gap._to, cause});
    }

    void addJoint(const SlotMap::Joint& joint)
    {
        if (!joint._from->_seen || !joint._to->_seen || !isSuspect(joint, _now, _staleAfter))
            return;
        const Explanation cause = Trovio::Root::get().explain(joint._from->_label, joint._to->_label, _staleAfter);
        if (cause._verdict != Verdict::Flowing)
            add({joint._from->_label, joint._to->_label, cause});
    }

    /// Those that no pair has told of.
    void addNodes()
    {
        std::set<std::string> told;
        for (const Standstill& still : _found)
            if (const std::string* const node = still._cause.findText("node"))
                told.insert(*node);
        Explain::walkTree(_map.root(), [&](const std::string& path, const Trovio::NamespaceInfo& info) {
            if (!info._node || !info._node->_state._degraded || told.contains(path))
                return;
            const Trovio::NodeState& state = info._node->_state;
            add({"",
                 "",
                 {Verdict::NodeDegraded,
                  "node " + inQuotes(path) + " (" + info._node->_typeName +
                      "): " + state.describe(Trovio::Time::getCurrentTime()),
                  {{"node", path}, {"reason", state._reason}, {"since", state._since.getSeconds()}}}});
        });
    }

    /// The slot of a sensor, or of a program, that neither a connection nor a route that lacks something leads to.
    void addLonely(const SlotMap::Place& place)
    {
        if (place._node || place._slot->_active || _ends.contains(place._label) || isLinked(place))
            return;
        const std::string who = place._sensor.empty()
                                    ? "slot " + inQuotes(place._label)
                                    : "sensor " + inQuotes(place._sensor) + " (label " + inQuotes(place._label) + ")";
        const Explanation cause{Verdict::NoRoute,
                                who + (place.isOut() ? " gives its values to nobody" : " gets no values") +
                                    ": no route names its label",
                                {{place.isOut() ? "out-slot" : "in-slot", place._label}}};
        add(place.isOut() ? Standstill{place._label, "", cause} : Standstill{"", place._label, cause});
    }

    /// It gets its values from another sensor.
    bool isLinked(const SlotMap::Place& place) const
    {
        return std::ranges::any_of(_map.places()._links, [&](const Explain::ScenePlaces::Link& link) {
            return _map.titleOf({link._scene, link._to.substr(0, link._to.rfind('.'))}) == place._sensor;
        });
    }

    void add(Standstill still)
    {
        _ends.insert({still._from, still._to});
        const auto [known, isNew] = _byCause.try_emplace(causeOf(still._cause), _found.size());
        if (isNew)
            _found.push_back(std::move(still));
        else
            ++_found[known->second]._more;
    }

    const SlotMap& _map;
    const double _staleAfter;
    const double _now = Trovio::Time::getCurrentTime().getSeconds();
    std::vector<Standstill> _found;
    std::map<std::string, std::size_t> _byCause;
    std::set<std::string> _ends; // of what was found
    std::size_t _explained = 0;
};

} // namespace

std::vector<Standstill> findStandstills(const SlotMap& map, double staleAfter)
{
    return StandstillSearch(map, staleAfter).find();
}

} // namespace Monitor
