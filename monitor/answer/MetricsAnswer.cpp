#include "monitor/Recorder.h"
#include "monitor/answer/Context.h"
#include "monitor/answer/MetricsText.h"
#include "trovio/Root.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <unordered_set>

namespace Monitor {
namespace {

using Trovio::SlotInfo;

struct Fate {
    const char* _name;
    std::uint64_t (*_count)(const SlotInfo& slot);
    bool _isOut;
};

constexpr Fate fates[] = {{"written", [](const SlotInfo& slot) { return slot._out->_written; }, true},
                          {"stored", [](const SlotInfo& slot) { return slot._in->_counts.stored; }, false},
                          {"overwritten", [](const SlotInfo& slot) { return slot._in->_counts.overwritten; }, false},
                          {"taken", [](const SlotInfo& slot) { return slot._in->_counts.taken; }, false},
                          {"not_stored", [](const SlotInfo& slot) { return slot._in->_notStored; }, false}};

bool isOut(const SlotInfo& slot)
{
    return slot._direction == Trovio::Slot::Direction::Out;
}

Trovio::StampCounts stampsOf(const SlotInfo& slot)
{
    return isOut(slot) ? slot._out->_stamps : slot._in->_stamps;
}

using Slots = std::vector<SlotInfo>;

/// Each slot once, and no two under one label: the same sample twice is none. Who has a label that another one had
/// first, or none that the root sees, is called by the way there.
Slots named(Slots slots)
{
    std::ranges::stable_sort(slots, {}, [](const SlotInfo& slot) -> const std::string& { return slot._label; });
    const auto seen = std::ranges::find_if(slots, [](const SlotInfo& slot) { return !slot._label.empty(); });
    std::rotate(slots.begin(), seen, slots.end());
    std::unordered_set<std::string> homes, labels;
    std::erase_if(slots, [&](SlotInfo& slot) {
        if (!homes.insert(slot._home).second)
            return true;
        if (slot._label.empty() || labels.contains(slot._label))
            slot._label = slot._home;
        return !labels.insert(slot._label).second;
    });
    return slots;
}

void addSlots(const Slots& slots, MetricsText& text)
{
    text.family("ostrel_slot_records", "counter", "Records by slot and what became of them.");
    for (const SlotInfo& slot : slots)
        for (const Fate& fate : fates)
            if (fate._isOut == isOut(slot))
                text.sample({{"slot", slot._label}, {"type", slot._typeName}, {"fate", fate._name}}, fate._count(slot));
    text.family("ostrel_slot_waiting", "gauge", "Records that nobody has taken yet.");
    for (const SlotInfo& slot : slots)
        if (!isOut(slot))
            text.sample({{"slot", slot._label}}, slot._in->_counts.waiting);
    text.family("ostrel_slot_odd_stamps", "counter", "Records stamped in the future, or before the one before.");
    for (const SlotInfo& slot : slots) {
        const Trovio::StampCounts stamps = stampsOf(slot);
        text.sample({{"slot", slot._label}, {"kind", "future"}}, stamps._future);
        text.sample({{"slot", slot._label}, {"kind", "backwards"}}, stamps._backwards);
    }
}

void addAges(const Slots& slots, MetricsText& text)
{
    const double now = Trovio::Time::getCurrentTime().getSeconds();
    text.family("ostrel_slot_age_seconds", "gauge", "Since the time stamp of the newest record.");
    for (const SlotInfo& slot : slots) {
        const double stamp = stampsOf(slot)._last.getSeconds();
        if (stamp != 0 && std::isfinite(stamp))
            text.sample({{"slot", slot._label}}, now - stamp);
    }
}

using Nodes = std::map<std::string, Trovio::NodeInfo>; // by path

void addNodes(const Nodes& nodes, MetricsText& text)
{
    text.family("ostrel_node_state", "stateset", "Whether a node runs, or lacks something and keeps trying.");
    for (const auto& [path, node] : nodes)
        for (const bool degraded : {false, true})
            text.sample(
                {{"node", path}, {"type", node._typeName}, {"ostrel_node_state", degraded ? "degraded" : "running"}},
                std::uint64_t(node._state._degraded == degraded));
    text.family("ostrel_node_events", "counter", "What nodes count.");
    for (const auto& [path, node] : nodes)
        for (const Trovio::CounterInfo& counter : node._counters)
            text.sample({{"node", path}, {"type", node._typeName}, {"event", counter._name}}, counter._value);
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

void addRecording(const SceneView& scene, MetricsText& text)
{
    if (!scene._recorder)
        return;
    const RecorderStatus status = scene._recorder->status();
    text.family("ostrel_recording", "gauge", "Whether something is being recorded.");
    text.sample({}, std::uint64_t(status._isRecording));
    if (status._path.empty())
        return;
    text.family("ostrel_recording_records", "counter", "Records of the recording that is made, or was made last.");
    text.sample({{"fate", "taken"}}, status._records);
    text.sample({{"fate", "not_kept"}}, status._notKept);
    text.family("ostrel_recording_bytes", "gauge", "Its size.");
    text.sample({}, status._size);
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

/// Who says nothing takes everything.
bool takesOpenMetrics(const std::string& accept)
{
    return accept.empty() || accept.find("application/openmetrics-text") != std::string::npos ||
           accept.find("application/*") != std::string::npos || accept.find("*/*") != std::string::npos;
}

} // namespace

Answer answerMetrics(const Context& context, const Question& question)
{
    using Clock = std::chrono::steady_clock;
    const auto start = Clock::now();
    Slots copied = Trovio::Root::listSlots();
    const Nodes nodes = Trovio::Root::listNodes();
    const std::chrono::duration<double> copying = Clock::now() - start;
    const Slots slots = named(std::move(copied));
    const bool isOpen = takesOpenMetrics(question._accept);
    MetricsText text(isOpen ? MetricsText::Format::OpenMetrics : MetricsText::Format::Plain);
    text.family("ostrel_host", "info", "The program.");
    text.sample({{"version", MONITOR_VERSION}, {"name", context._scene._name}}, std::uint64_t(1));
    text.family("ostrel_start_seconds", "gauge", "When it began to answer, since 1970.");
    text.sample({}, context._started);
    addSlots(slots, text);
    addAges(slots, text);
    addNodes(nodes, text);
    addFrames(context._scene, text);
    addRecording(context._scene, text);
    addWatchers(context, text);
    text.family("ostrel_tree_copy_seconds", "gauge", "How long the counts of slots and nodes took to copy.");
    text.sample({}, copying.count());
    return {200,
            isOpen ? "application/openmetrics-text; version=1.0.0; charset=utf-8"
                   : "text/plain; version=0.0.4; charset=utf-8",
            std::move(text).finish()};
}

} // namespace Monitor
