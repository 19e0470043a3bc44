#include "monitor/answer/NewRoute.h"

#include "explain/text/Escape.h"
#include "trovio/routing/Pattern.h"

#include <set>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Monitor {
namespace {

using Explain::inQuotes;

/// Whether what comes into the slot gets to an out-slot, by nodes that pass records on and what joins them.
bool getsFrom(const std::vector<SlotMap::Joint>& joints, const SlotMap::Place& in, const SlotMap::Place& wanted)
{
    std::vector<const Trovio::NodeInfo*> ahead{in._node};
    std::set<const Trovio::NodeInfo*> seen;
    while (!ahead.empty()) {
        const Trovio::NodeInfo* const node = ahead.back();
        ahead.pop_back();
        if (!node || !node->_relays || !seen.insert(node).second)
            continue;
        if (wanted._node == node)
            return true;
        for (const SlotMap::Joint& joint : joints)
            if (joint._from->_node == node)
                ahead.push_back(joint._to->_node);
    }
    return false;
}

std::string leadsBack(const SlotMap::Place& from, const SlotMap::Place& to)
{
    return "a route from " + inQuotes(from._label) + " to " + inQuotes(to._label) +
           " would lead records back into a node that they came from; take one of the "
           "routes away that lead from " +
           inQuotes(to._label) + " to it first";
}

/// The pairs of slots of one type that the root would join.
std::vector<SlotMap::Joint> pairsOf(const SlotMap& map, const std::string& from, const std::string& to)
{
    const Trovio::Pattern pattern(from);
    const Trovio::LabelTemplate target(to, pattern, Trovio::LabelTemplate::Placeholders::None);
    std::unordered_multimap<std::string_view, const SlotMap::Place*> targets;
    for (const SlotMap::Place& place : map.all())
        if (place._seen && !place.isOut())
            targets.emplace(place._label, &place);
    std::vector<SlotMap::Joint> pairs;
    for (const SlotMap::Place& place : map.all()) {
        const auto matched = place._seen && place.isOut() ? pattern.match(place._label) : std::nullopt;
        const auto label = matched ? target.expand(*matched) : std::nullopt;
        if (!label)
            continue;
        const auto [begin, end] = targets.equal_range(*label);
        for (auto found = begin; found != end; ++found)
            if (found->second->_slot->_typeName == place._slot->_typeName)
                pairs.push_back({&place, found->second});
    }
    return pairs;
}
} // namespace

std::string whyNoRoute(const SlotMap& map, const SlotMap::Place& from, const SlotMap::Place& to, bool isConverted)
{
    if (!isConverted && from._slot->_typeName != to._slot->_typeName)
        return "a route from " + inQuotes(from._label) + " to " + inQuotes(to._label) +
               " would carry nothing: the one gives " + from._slot->_typeName + ", the other takes " +
               to._slot->_typeName +
               "; allowed are ends of one type, or a conversion on the way, such as 'Convert type=" +
               from._slot->_typeName + "'";
    return getsFrom(map.joints(), to, from) ? leadsBack(from, to) : std::string();
}

// Several pairs may close a loop that none of them closes alone.
std::string whyNoPattern(const SlotMap& map, const std::string& from, const std::string& to)
{
    const std::vector<SlotMap::Joint> pairs = pairsOf(map, from, to);
    std::vector<SlotMap::Joint> joints = map.joints();
    joints.insert(joints.end(), pairs.begin(), pairs.end());
    for (const SlotMap::Joint& pair : pairs)
        if (getsFrom(joints, *pair._to, *pair._from))
            return leadsBack(*pair._from, *pair._to);
    return {};
}
} // namespace Monitor
