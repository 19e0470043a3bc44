#include "monitor/server/streams/Watches.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Monitor {
namespace {

constexpr std::size_t maxReused = 1'024; // bytes
}

/// A slot that is watched, and who watches it.
class Watches::Watched final : public TapReceiver {
public:
    explicit Watched(const std::string& label) : _label(label) {}

    void take(const SlotCodec& codec, TapRecord& record) override;
    void add(const Viewer& viewer);
    bool remove(const Stream& stream);
    bool isSeenBy(const Stream& stream) const { return std::ranges::count(_viewers, &stream, &Viewer::_stream) > 0; }
    bool isAlone() const { return _viewers.empty(); }
    void miss(std::uint64_t refused) override;

private:
    const std::string _label;
    std::vector<Viewer> _viewers;
    const SlotCodec* _codec = nullptr;
    std::optional<TapRecord> _last; // for who comes later
    std::uint64_t _refused = 0;     // so far
};

// What the last one held goes back, so that its memory is used again; much memory is not held twice.
void Watches::Watched::take(const SlotCodec& codec, TapRecord& record)
{
    for (const Viewer& viewer : _viewers)
        viewer._stream->take({viewer._number, _label, codec, record});
    _codec = &codec;
    if (!_last)
        _last.emplace();
    std::swap(*_last, record);
    if (record._cdr.capacity() > maxReused)
        Bytes().swap(record._cdr);
}

void Watches::Watched::add(const Viewer& viewer)
{
    _viewers.push_back(viewer);
    if (_last)
        viewer._stream->take({viewer._number, _label, *_codec, *_last});
}

bool Watches::Watched::remove(const Stream& stream)
{
    return std::erase_if(_viewers, [&stream](const Viewer& viewer) { return viewer._stream == &stream; }) > 0;
}

void Watches::Watched::miss(std::uint64_t refused)
{
    if (refused == _refused)
        return;
    for (const Viewer& viewer : _viewers)
        viewer._stream->miss(viewer._number, refused - _refused);
    _refused = refused;
}

/// Has the slot tapped for an entry of its own, or leaves none.
bool Watches::begin(const std::string& label)
{
    const auto made = _watched.emplace(label, std::make_shared<Watched>(label)).first;
    bool isTapped = false;
    try {
        isTapped = _taps.add(label, made->second);
    } catch (...) {
        _watched.erase(made);
        throw;
    }
    if (!isTapped)
        _watched.erase(made);
    return isTapped;
}

bool Watches::add(const std::string& label, Stream& stream, std::uint32_t number)
{
    if (const auto known = _watched.find(label); known != _watched.end())
        known->second->miss(_taps.getCounts(label)._refused); // before it came
    else if (!begin(label))
        return false;
    Watched& watched = *_watched.at(label);
    if (watched.isSeenBy(stream))
        return true;
    ++_streams[&stream];
    _hurry();
    watched.add({&stream, number});
    return true;
}

void Watches::remove(const std::string& label, Stream& stream)
{
    const auto known = _watched.find(label);
    if (known == _watched.end())
        return;
    if (known->second->remove(stream) && --_streams[&stream] == 0)
        _streams.erase(&stream);
    if (!known->second->isAlone())
        return;
    _taps.remove(label);
    _watched.erase(known);
}

void Watches::removeAll(Stream& stream)
{
    if (!_streams.contains(&stream))
        return;
    std::vector<std::string> labels;
    for (const auto& [label, watched] : _watched)
        labels.push_back(label);
    for (const std::string& label : labels)
        remove(label, stream);
    _streams.erase(&stream); // also where memory ran out while it was added
}

std::chrono::milliseconds Watches::pace() const
{
    auto pace = Stream::SlowestPace;
    for (const auto& [stream, slots] : _streams)
        pace = std::min(pace, stream->pace());
    return _taps.isRoomy() ? pace : Stream::FastestPace;
}

void Watches::round()
{
    _taps.drain();
    const auto streams = _streams; // some end with the round
    for (const auto& [stream, slots] : streams)
        stream->endRound();
}
} // namespace Monitor
