#include "monitor/replay/RecordedFile.h"

#include "monitor/codec/SlotCodec.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace Monitor {

namespace {

constexpr std::size_t maxSceneBytes = 16UL * 1024 * 1024; // what a scene file may have
constexpr std::size_t maxScenes = 100;
constexpr std::size_t maxGapBytes = 65'536; // of a message that says what was not kept

std::uint64_t notKeptIn(const Mcap::Message& message)
{
    if (message._data.size() > maxGapBytes)
        return 0;
    const auto gap = nlohmann::json::parse(Mcap::asText(message._data), nullptr, false);
    const auto count = gap.is_object() ? gap.find("notKept") : gap.end();
    return count != gap.end() && count->is_number_unsigned() ? count->get<std::uint64_t>() : 0;
}

class Gather final : public Mcap::Visitor {
public:
    Gather(RecordedFile& found, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn)
        : _found(found), _goOn(goOn)
    {
    }

    void header(std::string_view, std::string_view library) override { _found._library = library; }
    void schema(const Mcap::Schema& schema) override { _schemas[schema._id] = schema._name; }
    void channel(const Mcap::Channel& channel) override
    {
        _rows[channel._id] = _found._channels.size();
        _found._channels.push_back(
            {channel._id, channel._topic, channel._encoding, _schemas[channel._schema], 0, 0, {}});
    }
    void message(const Mcap::Message& message) override
    {
        RecordedChannel& channel = _found._channels[_rows[message._channel]];
        ++channel._messages;
        channel._bytes += message._data.size();
        channel._times.add(message._logTime);
        ++_found._outside;
        if (channel._topic == gapsTopic)
            _found._notKept += notKeptIn(message);
    }
    void chunk(const Mcap::ChunkPlace& place) override
    {
        std::uint64_t inside = 0;
        for (const auto& [channel, entries] : place._messages)
            inside += entries.size();
        _found._outside -= inside;
        _found._messages += inside;
        if (inside > 0)
            _found._chunks.push_back({place._index._times, place._index._offset, place._index._length});
        _found._times.add(place._index._times);
    }
    void attachment(const Mcap::Attachment& attachment, std::uint64_t, std::uint64_t) override
    {
        _found._attached.push_back({attachment._name, attachment._mediaType, attachment._data.size()});
        const bool isScene = attachment._mediaType == "application/toml" || attachment._name.ends_with(".toml");
        if (isScene && attachment._data.size() <= maxSceneBytes && _found._scenes.size() < maxScenes)
            _found._scenes.push_back({attachment._name, std::string(Mcap::asText(attachment._data))});
    }
    void metadata(const Mcap::Metadata& metadata, std::uint64_t, std::uint64_t) override
    {
        if (metadata._name == "host" || metadata._name == "clock")
            _found._facts[metadata._name] = metadata._values;
    }
    bool goOn(std::uint64_t read, std::uint64_t size) override { return !_goOn || _goOn(read, size); }

private:
    RecordedFile& _found;
    const std::function<bool(std::uint64_t, std::uint64_t)>& _goOn;
    std::map<std::uint16_t, std::string> _schemas; // names
    std::map<std::uint16_t, std::size_t> _rows;    // of the channels
};
} // namespace

const SlotCodec* codecOfSchema(std::string_view schemaName)
{
    const auto all = SlotCodec::all();
    const auto found = std::ranges::find(all, schemaName, &SlotCodec::schemaName);
    return found == all.end() ? nullptr : *found;
}

const RecordedChannel* RecordedFile::find(std::string_view topic) const
{
    const auto found = std::ranges::find(_channels, topic, &RecordedChannel::_topic);
    return found == _channels.end() ? nullptr : &*found;
}

RecordedFile readRecordedFile(Mcap::InputFile& file, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn)
{
    RecordedFile found;
    found._isBeingWritten = file.isBeingWritten();
    Gather gather(found, goOn);
    found._state = Mcap::Reader(file, gather).read();
    std::ranges::stable_sort(found._chunks, {}, [](const RecordedChunk& chunk) { return chunk._times._start; });
    return found;
}
} // namespace Monitor
