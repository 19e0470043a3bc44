#include "explain/TreeWalk.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/MetricsText.h"
#include "monitor/answer/SlotMap.h"
#include "trovio/Root.h"

#include <chrono>
#include <cmath>

namespace Monitor {
namespace {

using Place = SlotMap::Place;

struct Fate {
    const char* _name;
    std::uint64_t (*_count)(const Place& place);
    bool _isOut;
};

constexpr Fate fates[] = {
    {"written", [](const Place& place) { return place._slot->_out->_written; }, true},
    {"stored", [](const Place& place) { return place._slot->_in->_counts.stored; }, false},
    {"overwritten", [](const Place& place) { return place._slot->_in->_counts.overwritten; }, false},
    {"taken", [](const Place& place) { return place._slot->_in->_counts.taken; }, false},
    {"not_stored", [](const Place& place) { return place._slot->_in->_notStored; }, false}};

Trovio::StampCounts stampsOf(const Place& place)
{
    return place.isOut() ? place._slot->_out->_stamps : place._slot->_in->_stamps;
}

void addSlots(const SlotMap& map, MetricsText& text)
{
    text.family("ostrel_slot_records", "counter", "Records by slot and what became of them.");
    for (const Place& place : map.all())
        for (const Fate& fate : fates)
            if (fate._isOut == place.isOut())
                text.sample({{"slot", place._label}, {"type", place._slot->_typeName}, {"fate", fate._name}},
                            fate._count(place));
    text.family("ostrel_slot_waiting", "gauge", "Records that nobody has taken yet.");
    for (const Place& place : map.all())
        if (!place.isOut())
            text.sample({{"slot", place._label}}, place._slot->_in->_counts.waiting);
    text.family("ostrel_slot_odd_stamps", "counter", "Records stamped in the future, or before the one before.");
    for (const Place& place : map.all()) {
        const Trovio::StampCounts stamps = stampsOf(place);
        text.sample({{"slot", place._label}, {"kind", "future"}}, stamps._future);
        text.sample({{"slot", place._label}, {"kind", "backwards"}}, stamps._backwards);
    }
}

void addAges(const SlotMap& map, MetricsText& text)
{
    const double now = Trovio::Time::getCurrentTime().getSeconds();
    text.family("ostrel_slot_age_seconds", "gauge", "Since the time stamp of the newest record.");
    for (const Place& place : map.all()) {
        const double stamp = stampsOf(place)._last.getSeconds();
        if (stamp != 0 && std::isfinite(stamp))
            text.sample({{"slot", place._label}}, now - stamp);
    }
}

/// Calls visit(path, node) for every node.
template <class Visit>
void forEachNode(const SlotMap& map, const Visit& visit)
{
    Explain::walkTree(map.root(), [&visit](const std::string& path, const Trovio::NamespaceInfo& info) {
        if (info._node)
            visit(path, *info._node);
    });
}

void addNodes(const SlotMap& map, MetricsText& text)
{
    text.family("ostrel_node_state", "stateset", "Whether a node runs, or lacks something and keeps trying.");
    forEachNode(map, [&](const std::string& path, const Trovio::NodeInfo& node) {
        for (const bool degraded : {false, true})
            text.sample(
                {{"node", path}, {"type", node._typeName}, {"ostrel_node_state", degraded ? "degraded" : "running"}},
                std::uint64_t(node._state._degraded == degraded));
    });
    text.family("ostrel_node_events", "counter", "What nodes count.");
    forEachNode(map, [&](const std::string& path, const Trovio::NodeInfo& node) {
        for (const Trovio::CounterInfo& counter : node._counters)
            text.sample({{"node", path}, {"type", node._typeName}, {"event", counter._name}}, counter._value);
    });
}

void addFrames(const SceneView& scene, MetricsText& text)
{
    if (!scene._frames)
        return;
    const FrameCounts frames = scene._frames();
    text.family("ostrel_frames", "counter", "Frames of the scene.");
    text.sample({{"fate", "run"}}, frames._run);
    text.sample({{"fate", "left_out"}}, frames._leftOut);
    text.family("ostrel_frame_rate", "gauge", "Frames a second that were asked for.");
    text.sample({}, frames._rate);
}

void addWatchers(const Context& context, MetricsText& text)
{
    text.family("ostrel_tap_records", "counter", "Records of slots that are looked at now.");
    for (const TapCounts& tap : context._taps.getCounts()) {
        text.sample({{"slot", tap._label}, {"fate", "drained"}}, tap._drained);
        text.sample({{"slot", tap._label}, {"fate", "refused"}}, tap._refused);
    }
    if (!context._clients)
        return;
    text.family("ostrel_client_records", "counter", "Records for each client that looks.");
    for (const ClientCounts& client : context._clients()) {
        text.sample({{"client", client._client}, {"fate", "sent"}}, client._sent);
        text.sample({{"client", client._client}, {"fate", "dropped"}}, client._dropped);
    }
}

} // namespace

Answer answerMetrics(const Context& context, const Question&)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    Trovio::NamespaceInfo root = Trovio::Root::get().inspect();
    const std::chrono::duration<double> copying = Clock::now() - start;
    const SlotMap map(std::move(root), placesOf(context));
    MetricsText text;
    text.family("ostrel_host", "info", "The program.");
    text.sample({{"version", MONITOR_VERSION}, {"name", context._scene._name}}, std::uint64_t(1));
    text.family("ostrel_start_seconds", "gauge", "When it began to answer, since 1970.");
    text.sample({}, context._started);
    addSlots(map, text);
    addAges(map, text);
    addNodes(map, text);
    addFrames(context._scene, text);
    addWatchers(context, text);
    text.family("ostrel_tree_copy_seconds", "gauge", "How long the tree stood still for this text.");
    text.sample({}, copying.count());
    return {200, "application/openmetrics-text; version=1.0.0; charset=utf-8", std::move(text).finish()};
}

} // namespace Monitor
