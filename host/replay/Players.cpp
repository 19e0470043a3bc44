#include "host/replay/Players.h"

#include "explain/text/Escape.h"
#include "trovio/Root.h"

#include <algorithm>
#include <filesystem>

namespace Host {

using namespace Explain;
using Monitor::RecordedChannel;
using Trovio::Slot;

namespace {

std::set<int> threadsNow()
{
    std::set<int> threads;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/self/task"))
        threads.insert(std::stoi(entry.path().filename().string()));
    return threads;
}

const Monitor::SlotCodec* codecOf(const RecordedChannel& channel)
{
    return channel._encoding == "cdr" ? Monitor::codecOfSchema(channel._schema) : nullptr;
}

// Types that are refused where they were not recorded, before they have opened anything: they run on threads that
// nothing can hold back.
bool isUnsteady(std::string_view type)
{
    return type == "Controller" || type == "DDS";
}

bool opensPorts(std::string_view type)
{
    return isUnsteady(type) || type == "MQTT" || type == "OSC" || type == "Serial";
}

bool hasInSlots(const Trovio::NamespaceInfo& node)
{
    return std::ranges::any_of(
        node._slots, [](const Trovio::SlotInfo& slot) { return slot._own && slot._direction == Slot::Direction::In; });
}

// The slots of the node that is stood for, which may have more than were recorded.
void addSlots(Player& player, const Trovio::NamespaceInfo& node)
{
    for (const Trovio::SlotInfo& slot : node._slots)
        if (!slot._own)
            continue;
        else if (slot._direction == Slot::Direction::In)
            player.addSink(slot._label, slot._typeName);
        else if (const auto* const codec = Monitor::SlotCodec::find(slot._typeName))
            player.addSource(slot._label, *codec);
}
} // namespace

Players::Players(const Monitor::RecordedFile& recorded, const Trovio::Stepper& stepper, Reach reach)
    : _recorded(recorded), _stepper(stepper), _reach(reach), _threads(threadsNow()), _joined(stepper.countJoined())
{
}

std::unique_ptr<Trovio::Node> Players::choose(const std::string& path, const std::string& type,
                                              std::unique_ptr<Trovio::Node> made)
{
    lookForThreads();
    _newest = inQuotes(path) + " (" + escaped(type) + ")";
    const Trovio::NamespaceInfo node = made ? made->inspect() : Trovio::NamespaceInfo();
    const bool isFilter = node._node && node._node->_relays;
    const bool isRecorded =
        std::ranges::any_of(_recorded._channels, [prefix = path + "/"](const RecordedChannel& channel) {
            return channel._topic.starts_with(prefix) && codecOf(channel);
        });
    const std::string reason = isFilter || isRecorded ? "" : whyLeftOut(type, node);
    if (isFilter || (!isRecorded && reason.empty())) {
        _paths.insert(path);
        return made;
    }
    if (isUnsteady(type) && !isRecorded && !hasInSlots(node))
        _unsteady.push_back(_newest);
    else if (!isRecorded)
        _notes.push_back("node " + _newest + " " + reason);
    auto player = std::make_unique<Player>(isRecorded ? "plays what was recorded of " + type
                                                      : "does nothing in place of " + type);
    addRecorded(*player, path); // first: the types of what was recorded count
    addSlots(*player, node);
    return player;
}

/// Empty where it is made: it was not recorded and is no filter.
std::string Players::whyLeftOut(const std::string& type, const Trovio::NamespaceInfo& node) const
{
    if (_reach != Reach::Sends && hasInSlots(node))
        return "takes values and is left out, so that a replay drives no machine by accident";
    if (_reach == Reach::Nowhere && opensPorts(type))
        return "was not recorded and is left out: in a test nothing comes from outside";
    return {};
}

void Players::addRecorded(Player& player, const std::string& path)
{
    _paths.insert(path);
    std::map<std::string, const Monitor::SlotCodec*> codecs; // by label
    for (const RecordedChannel& channel : _recorded._channels) {
        const auto* const codec = channel._topic.starts_with(path + "/") ? codecOf(channel) : nullptr;
        if (!codec || _sources.contains(channel._id))
            continue;
        const std::string label = channel._topic.substr(path.size() + 1);
        const auto* const first = codecs.try_emplace(label, codec).first->second;
        if (first == codec)
            _sources[channel._id] = &player.addSource(label, *codec);
        else
            _notes.push_back("slot " + inQuotes(channel._topic) + " changed its type while it was recorded, from " +
                             std::string(first->slotType()) + " to " + std::string(codec->slotType()) +
                             "; only the records of the first type are replayed");
    }
}

void Players::finish()
{
    lookForThreads();
    noteUnclaimed();
}

// A node that has started has brought threads; those that take turns have joined the stepper.
void Players::lookForThreads()
{
    std::size_t newThreads = 0;
    for (const int thread : threadsNow())
        newThreads += _threads.insert(thread).second ? 1 : 0;
    const std::size_t joined = _stepper.countJoined();
    if (!_newest.empty() && newThreads > joined - _joined)
        _unsteady.push_back(_newest);
    _joined = joined;
    _newest.clear();
}

// Filters, and what the scene itself sends, come about anew.
void Players::noteUnclaimed()
{
    for (const RecordedChannel& channel : _recorded._channels) {
        const bool isOwn = channel._topic.starts_with('@') || _sources.contains(channel._id) ||
                           !Trovio::Root::get().findSlots(channel._topic).empty();
        if (!isOwn && channel._encoding == "cdr")
            _notes.push_back("slot " + inQuotes(channel._topic) +
                             (codecOf(channel) ? " was recorded, but the scene has no such node; it is not replayed"
                                               : " has messages of type " + inQuotes(channel._schema) +
                                                     ", which is no slot type; they are not replayed"));
    }
}

Monitor::AnySource* Players::find(std::uint16_t channel) const
{
    const auto found = _sources.find(channel);
    return found == _sources.end() ? nullptr : found->second;
}

std::set<std::uint16_t> Players::channels() const
{
    std::set<std::uint16_t> channels;
    for (const auto& [channel, source] : _sources)
        channels.insert(channel);
    return channels;
}
} // namespace Host
