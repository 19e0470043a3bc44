#include "monitor/replay/RecordedFile.h"

#include <algorithm>

namespace Monitor {

namespace {

constexpr std::size_t mostSceneBytes = 16UL * 1024 * 1024; // what a scene file may have
constexpr std::size_t mostScenes = 100;

class Gather final : public Mcap::Visitor {
public:
    Gather(RecordedFile& found, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn)
        : _found(found), _goOn(goOn)
    {
    }

    void schema(const Mcap::Schema& schema) override { _schemas[schema._id] = schema._name; }
    void channel(const Mcap::Channel& channel) override
    {
        _found._channels.push_back({channel._id, channel._topic, channel._encoding, _schemas[channel._schema]});
    }
    void message(const Mcap::Message&) override { ++_found._outside; }
    void chunk(const Mcap::ChunkPlace& place) override
    {
        std::uint64_t inside = 0;
        for (const auto& [channel, entries] : place._messages)
            inside += entries.size();
        _found._outside -= inside;
        _found._messages += inside;
        if (inside > 0)
            _found._chunks.push_back(place._index);
        _found._times.add(place._index._times);
    }
    void attachment(const Mcap::Attachment& attachment, std::uint64_t, std::uint64_t) override
    {
        const bool isScene = attachment._mediaType == "application/toml" || attachment._name.ends_with(".toml");
        if (isScene && attachment._data.size() <= mostSceneBytes && _found._scenes.size() < mostScenes)
            _found._scenes.push_back({attachment._name, std::string(Mcap::asText(attachment._data))});
    }
    bool goOn(std::uint64_t read, std::uint64_t size) override { return !_goOn || _goOn(read, size); }

private:
    RecordedFile& _found;
    const std::function<bool(std::uint64_t, std::uint64_t)>& _goOn;
    std::map<std::uint16_t, std::string> _schemas; // names
};
} // namespace

const RecordedChannel* RecordedFile::find(std::string_view topic) const
{
    const auto found = std::ranges::find(_channels, topic, &RecordedChannel::_topic);
    return found == _channels.end() ? nullptr : &*found;
}

RecordedFile readRecordedFile(Mcap::InputFile& file, const std::function<bool(std::uint64_t, std::uint64_t)>& goOn)
{
    RecordedFile found;
    Gather gather(found, goOn);
    found._state = Mcap::Reader(file, gather).read();
    std::ranges::stable_sort(found._chunks, {}, [](const Mcap::ChunkIndex& chunk) { return chunk._times._start; });
    return found;
}
} // namespace Monitor
