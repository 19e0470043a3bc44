#pragma once

#include "monitor/mcap/write/Recording.h"
#include "monitor/record/Handover.h"

namespace Monitor {

/// What a recorder writes beside the records of slots, as JSON in channels that no slot can have: frames, what was not
/// kept, and how the clocks stand.
/// Ownership: refers to the file.
/// Threads:   one at a time.
class OwnChannels {
public:
    explicit OwnChannels(Mcap::Recording& file);

    void writeFrames(const std::vector<RecordedFrame>& frames);
    /// That `notKept` records of a slot, since the beginning, are not in the file; nothing where that was told.
    void writeGap(const std::string& label, std::uint64_t notKept);
    /// The next gaps begin now.
    void endGaps();
    /// Wall and steady clock, at the beginning, every ten seconds, and where the wall clock was set; else nothing.
    void writeClocks();

    std::uint64_t notKept() const { return _notKept; }

private:
    void write(std::uint16_t channel, std::uint64_t time, const std::string& json);

    Mcap::Recording& _file;
    const std::uint16_t _frames, _gaps, _clocks; // channels
    std::map<std::string, std::uint64_t> _told;  // records not kept, by label
    std::uint64_t _notKept = 0;
    double _gapsSince;      // seconds of the wall clock
    double _nextClocks = 0; // of the steady clock
    double _wallAtZero = 0; // of the wall clock where the steady one is 0
};

/// What the machine says of its wall clock.
struct ClockState {
    bool _isSynchronized = false;
    double _error = 0; // seconds, at most
};
ClockState clockState();

} // namespace Monitor
