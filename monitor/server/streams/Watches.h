#pragma once

#include "monitor/server/streams/Stream.h"
#include "monitor/tap/TapSet.h"

#include <map>
#include <unordered_map>
#include <vector>

namespace Monitor {

/// Who watches which slot; hands the records of the taps round.
/// Ownership: refers to the taps and to the streams, which forget themselves here before they go.
/// Threads:   the server's.
class Watches {
public:
    /// `hurry` is called when the next round may have to come sooner than it was to.
    Watches(TapSet& taps, std::function<void()> hurry) : _taps(taps), _hurry(std::move(hurry)) {}

    /// The stream gets the newest record at once, where there is one, and then all that come, with its number for the
    /// slot. False if there is no such out-slot. A stream that watches it already goes on with its number.
    bool add(const std::string& label, Stream& stream, std::uint32_t number = 0);
    void remove(const std::string& label, Stream& stream);
    void removeAll(Stream& stream);

    bool empty() const { return _watched.empty(); }
    /// The time to the next round: what the stream that wants it shortest asks for, and the shortest one where records
    /// would else find no room.
    std::chrono::milliseconds pace() const;
    /// Hands out what has come since the last round; what found no room in a tap counts as dropped for each client.
    void round();

private:
    struct Viewer {
        Stream* _stream;
        std::uint32_t _number; // by which it knows the slot
    };
    class Watched;
    using ByLabel = std::unordered_map<std::string, std::shared_ptr<Watched>>;

    bool begin(const std::string& label);

    TapSet& _taps;
    const std::function<void()> _hurry;
    ByLabel _watched;
    std::map<Stream*, std::size_t> _streams; // with how many slots each watches
};
} // namespace Monitor
