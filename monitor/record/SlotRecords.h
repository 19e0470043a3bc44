#pragma once

#include "monitor/mcap/write/Recording.h"
#include "monitor/tap/TapSet.h"
#include "trovio/routing/Pattern.h"

#include <functional>
#include <set>
#include <unordered_map>

namespace Monitor {

/// The out-slots that are recorded: finds them, taps them, and puts what they push into the file.
/// Ownership: refers to the file.
/// Threads:   one at a time.
class SlotRecords {
public:
    /// `memory`: bytes of plain values that all taps hold together.
    SlotRecords(const Trovio::Pattern& pattern, std::size_t memory, Mcap::Recording& file);

    /// Taps the slots that have come since.
    void look();
    /// What was pushed since the last time.
    void drain();
    /// Looks at no slot any more. What was pushed since the last drain is lost.
    void letGo();

    /// Calls `use` for each slot with the records that it pushed and that are not in the file, since the beginning.
    void forEachLoss(const std::function<void(const std::string& label, std::uint64_t records)>& use) const;

    std::size_t slots() const { return _labels.size(); }
    std::size_t leftOut() const { return _leftOut.size(); }
    std::uint64_t records() const { return _records; }

private:
    struct Channel {
        const SlotCodec* _codec = nullptr;
        std::uint16_t _id = 0;
        std::uint64_t _tooLarge = 0; // records
    };
    void write(const std::string& label, const SlotCodec& codec, const TapRecord& record);

    const Trovio::Pattern _pattern;
    const std::size_t _memory;
    const TapSize _size;
    Mcap::Recording& _file;
    TapSet _taps;
    std::set<std::string> _labels, _leftOut;
    std::unordered_map<std::string, Channel> _channels; // by label
    std::uint64_t _records = 0;
};
} // namespace Monitor
