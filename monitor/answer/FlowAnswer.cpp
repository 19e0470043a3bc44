#include "explain/GraphEdges.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/SlotMap.h"
#include "trovio/Root.h"

#include <cmath>
#include <nlohmann/json.hpp>

// What flows along each arrow of the graph.
namespace Monitor {
namespace {

using Json = nlohmann::ordered_json;
using Explain::GraphEdge;

Json edgeJson(const SlotMap& map, const GraphEdge& edge)
{
    const auto placeOf = [&map](const GraphEdge::End& end) {
        return end._isThere ? map.findByPath(end._path) : nullptr;
    };
    const SlotMap::Place *const from = placeOf(edge._from), *const to = placeOf(edge._to);
    const auto* const out = from && from->_slot->_out ? &*from->_slot->_out : nullptr;
    const auto* const in = to && to->_slot->_in ? &*to->_slot->_in : nullptr;
    const double stamp = out && out->_written != 0 ? out->_stamps._last.getSeconds() : NAN;
    return {{"from", from ? from->_label : edge._from._path},
            {"to", to ? to->_label : edge._to._path},
            {"tail", dotName(edge._from)},
            {"head", dotName(edge._to)},
            {"written", out ? Json(out->_written) : Json()},
            {"stored", in ? Json(in->_counts.stored) : Json()},
            {"notStored", in ? Json(in->_notStored) : Json()},
            {"stamp", std::isfinite(stamp) ? Json(stamp) : Json()},
            {"reason", edge._reason}};
}
} // namespace

Answer answerFlow(const Context&, const Question&)
{
    const SlotMap map(Trovio::Root::get().inspect(), {});
    const double now = Trovio::Time::getCurrentTime().getSeconds();
    Json edges = Json::array();
    for (const GraphEdge& edge : Explain::graphEdges(map.root()))
        edges.push_back(edgeJson(map, edge));
    return jsonAnswer({{"time", now}, {"edges", edges}});
}
} // namespace Monitor
