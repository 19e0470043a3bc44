#include "monitor/record/SlotRecords.h"

#include "monitor/mcap/format/FileTime.h"
#include "trovio/Root.h"

#include <algorithm>

namespace Monitor {

namespace {

constexpr TapSize largestTap{1024UL * 1024, 64};

std::vector<std::string> outSlots(const Trovio::Pattern& pattern)
{
    std::vector<std::string> labels;
    for (const Trovio::SlotInfo& slot : Trovio::Root::listSlots())
        if (!slot._label.empty() && slot._direction == Trovio::Slot::Direction::Out && pattern.match(slot._label))
            labels.push_back(slot._label);
    return labels;
}

// Smaller taps where there are many slots; half of the memory is for slots that come later.
TapSize tapSize(const Trovio::Pattern& pattern, std::size_t memory)
{
    const std::size_t slots = std::max<std::size_t>(1, outSlots(pattern).size());
    return {std::min(largestTap._bytes, memory / (2 * slots)), largestTap._handles};
}
} // namespace

SlotRecords::SlotRecords(const Trovio::Pattern& pattern, std::size_t memory, Mcap::Recording& file)
    : _pattern(pattern), _memory(memory), _size(tapSize(_pattern, memory)), _file(file), _taps(_size, "@recorder")
{
    look();
}

void SlotRecords::look()
{
    for (const std::string& label : outSlots(_pattern)) {
        if (_labels.contains(label))
            continue;
        if ((_labels.size() + 1) * _size._bytes > _memory || TapSet::isPattern(label))
            _leftOut.insert(label);
        else if (_taps.add(label))
            _labels.insert(label);
    }
}

void SlotRecords::drain()
{
    _taps.drain(
        [this](const std::string& label, const SlotCodec& codec, TapRecord&& record) { write(label, codec, record); });
}

void SlotRecords::write(const std::string& label, const SlotCodec& codec, const TapRecord& record)
{
    Channel& channel = _channels[label];
    if (channel._codec != &codec) { // also where a node was replaced by one whose slot is of another type
        channel._id = _file.addChannel(
            label, "cdr", {0, std::string(codec.schemaName()), "ros2msg", std::string(codec.schemaText())});
        channel._codec = &codec;
    }
    const auto arrival = static_cast<std::uint64_t>(std::max<std::int64_t>(0, record._arrival));
    if (_file.add(channel._id, arrival, Mcap::fileTimeOf(record._stamp.getSeconds()), record._cdr))
        ++_records;
    else
        ++channel._tooLarge;
}

void SlotRecords::letGo()
{
    for (const std::string& label : _labels)
        _taps.remove(label);
}

void SlotRecords::forEachLoss(const std::function<void(const std::string&, std::uint64_t)>& use) const
{
    for (const TapCounts& counts : _taps.getCounts()) {
        const auto channel = _channels.find(counts._label);
        use(counts._label, counts._refused + (channel == _channels.end() ? 0 : channel->second._tooLarge));
    }
}
} // namespace Monitor
