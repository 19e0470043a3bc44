#include "monitor/server/streams/Watches.h"

#include <set>

namespace Monitor {

bool Watches::add(const std::string& label, Stream& stream)
{
    const auto known = _watched.find(label);
    if (known == _watched.end()) {
        if (!_taps.add(label))
            return false;
        _watched[label]._streams.push_back(&stream);
        if (_watched.size() == 1)
            _begun();
        return true;
    }
    passOnLosses(known->second, _taps.getCounts(label)); // before it came
    known->second._streams.push_back(&stream);
    if (known->second._last)
        stream.take(label, *known->second._codec, *known->second._last);
    return true;
}

void Watches::remove(const std::string& label, Stream& stream)
{
    const auto known = _watched.find(label);
    if (known == _watched.end() || std::erase(known->second._streams, &stream) == 0 || !known->second._streams.empty())
        return;
    _watched.erase(known);
    _taps.remove(label);
}

void Watches::removeAll(Stream& stream)
{
    std::vector<std::string> labels;
    for (const auto& [label, watched] : _watched)
        labels.push_back(label);
    for (const std::string& label : labels)
        remove(label, stream);
}

void Watches::passOnLosses(Watched& watched, const TapCounts& counts)
{
    if (counts._refused == watched._refused)
        return;
    for (Stream* const stream : watched._streams)
        stream->miss(counts._label, counts._refused - watched._refused);
    watched._refused = counts._refused;
}

void Watches::round()
{
    _taps.drain([this](const std::string& label, const SlotCodec& codec, TapRecord&& record) {
        const auto known = _watched.find(label);
        if (known == _watched.end())
            return;
        for (Stream* const stream : known->second._streams)
            stream->take(label, codec, record);
        known->second._codec = &codec;
        known->second._last = std::move(record);
    });
    for (const TapCounts& counts : _taps.getLosses())
        if (const auto known = _watched.find(counts._label); known != _watched.end())
            passOnLosses(known->second, counts);
    std::set<Stream*> streams;
    for (const auto& [label, watched] : _watched)
        streams.insert(watched._streams.begin(), watched._streams.end());
    for (Stream* const stream : streams)
        stream->endRound();
}
} // namespace Monitor
