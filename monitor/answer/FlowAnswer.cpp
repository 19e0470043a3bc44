#include "explain/GraphEdges.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/ObjectText.h"
#include "monitor/answer/SlotMap.h"
#include "trovio/Root.h"

#include <cmath>
#include <optional>

// What flows along each arrow of the graph.
namespace Monitor {
namespace {

using Explain::GraphEdge;

void appendEdge(std::string& text, const SlotMap& map, const GraphEdge& edge)
{
    const auto placeOf = [&map](const GraphEdge::End& end) {
        return end._isThere ? map.findByPath(end._path) : nullptr;
    };
    const SlotMap::Place *const from = placeOf(edge._from), *const to = placeOf(edge._to);
    const auto* const out = from && from->_slot->_out ? &*from->_slot->_out : nullptr;
    const auto* const in = to && to->_slot->_in ? &*to->_slot->_in : nullptr;
    const double stamp = out && out->_written != 0 ? out->_stamps._last.getSeconds() : NAN;
    ObjectText object(text);
    object.add("from", from ? from->_label : edge._from._path);
    object.add("to", to ? to->_label : edge._to._path);
    object.add("tail", dotName(edge._from));
    object.add("head", dotName(edge._to));
    object.add("written", out ? std::optional(out->_written) : std::nullopt);
    object.add("stored", in ? std::optional(in->_counts.stored) : std::nullopt);
    object.add("notStored", in ? std::optional(in->_notStored) : std::nullopt);
    object.add("stamp", stamp); // null for none
    object.add("reason", edge._reason);
}
} // namespace

Answer answerFlow(const Context&, const Question&)
{
    const SlotMap map(Trovio::Root::get().inspect(), {});
    std::string text = "{\"time\":";
    appendJson(text, Trovio::Time::getCurrentTime().getSeconds());
    text += ",\"edges\":";
    appendList(text, Explain::graphEdges(map.root()),
               [&map](std::string& edges, const GraphEdge& edge) { appendEdge(edges, map, edge); });
    return {200, "application/json", text + "}\n"};
}
} // namespace Monitor
