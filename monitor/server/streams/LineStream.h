#pragma once

#include "monitor/server/streams/RoundStream.h"
#include "monitor/server/streams/Watches.h"

namespace Monitor {

/// The records of slots as lines of JSON: {"label":…,"time":…,"stamp":…,"value":…}, times in seconds, "time" that of
/// the arrival; {"dropped":…} where some are missing. Where sizes are asked for, "bytes" of its message stand in place
/// of the value. Threads: the server's.
class LineStream final : public RoundStream {
public:
    enum class Shows { Value, Size };

    /// Ends after `most` records; 0 for never.
    LineStream(Watches& watches, std::uint64_t most, Shows shows) : _watches(watches), _most(most), _shows(shows) {}
    ~LineStream() override { _watches.removeAll(*this); }

    /// Whether there is such an out-slot, which it then watches.
    bool watch(const std::string& label) { return _watches.add(label, *this); }

    void opened() override { endRound(); }
    void received(std::string_view, bool) override {}
    void take(const SeenRecord& seen) override;
    void endRound() override;
    void drained() override { endRound(); }

private:
    bool isEnough() const { return _most != 0 && _taken == _most; }
    std::string gapText() const;

    Watches& _watches;
    const std::uint64_t _most;
    const Shows _shows;
    std::uint64_t _taken = 0;
};
} // namespace Monitor
