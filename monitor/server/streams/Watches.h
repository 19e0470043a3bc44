#pragma once

#include "monitor/server/streams/Stream.h"
#include "monitor/tap/TapSet.h"

#include <optional>
#include <unordered_map>
#include <vector>

namespace Monitor {

/// Who watches which slot; hands the records of the taps round.
/// Ownership: refers to the taps and to the streams, which forget themselves here before they go.
/// Threads:   the server's.
class Watches {
public:
    /// `begun` is called when there is a first slot to watch.
    Watches(TapSet& taps, std::function<void()> begun) : _taps(taps), _begun(std::move(begun)) {}

    /// The stream gets the newest record at once, where there is one, and then all that come. False if there is no such
    /// out-slot. No stream watches a slot twice.
    bool add(const std::string& label, Stream& stream);
    void remove(const std::string& label, Stream& stream);
    void removeAll(Stream& stream);

    bool empty() const { return _watched.empty(); }
    /// Hands out what has come since the last round; what found no room in a tap counts as dropped for each client.
    void round();

private:
    struct Watched {
        std::vector<Stream*> _streams;
        const SlotCodec* _codec = nullptr;
        std::optional<TapRecord> _last; // for who comes later
        std::uint64_t _refused = 0;     // so far
    };

    static void passOnLosses(Watched& watched, const TapCounts& counts);

    TapSet& _taps;
    const std::function<void()> _begun;
    std::unordered_map<std::string, Watched> _watched; // by label
};
} // namespace Monitor
