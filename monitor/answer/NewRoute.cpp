#include "monitor/answer/NewRoute.h"

#include "explain/text/Escape.h"

#include <set>
#include <vector>

namespace Monitor {
namespace {

using Explain::inQuotes;

/// Whether what comes into the slot gets to an out-slot, by nodes that pass records on and the routes between them.
bool getsFrom(const SlotMap& map, const SlotMap::Place& in, const SlotMap::Place& wanted)
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
        for (const SlotMap::Joint& joint : map.joints())
            if (joint._from->_node == node)
                ahead.push_back(joint._to->_node);
    }
    return false;
}
} // namespace

std::string whyNoRoute(const SlotMap& map, const SlotMap::Place& from, const SlotMap::Place& to, bool isConverted)
{
    const std::string ends = inQuotes(from._label) + " to " + inQuotes(to._label);
    if (!isConverted && from._slot->_typeName != to._slot->_typeName)
        return "a route from " + ends + " would carry nothing: the one gives " + from._slot->_typeName +
               ", the other takes " + to._slot->_typeName +
               "; allowed are ends of one type, or a conversion on the way, such as 'Convert type=" +
               from._slot->_typeName + "'";
    if (getsFrom(map, to, from))
        return "a route from " + ends +
               " would lead records back into a node that they came from; take one of the "
               "routes away that lead from " +
               inQuotes(to._label) + " to it first";
    return {};
}
} // namespace Monitor
