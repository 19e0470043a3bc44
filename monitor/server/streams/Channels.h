#pragma once

#include "monitor/codec/SlotCodec.h"

#include <cstdint>
#include <map>
#include <string>

namespace Monitor {

/// The out-slots that the root sees, and the poses that they make, under numbers, as streams offer them. A number is
/// never given to another one. Threads: the server's.
class Channels {
public:
    struct Channel {
        std::string _label;      // as the root sees it
        const SlotCodec* _codec; // null for the poses of all slots
        bool isPoses() const { return !_codec; }
        std::string_view schemaName() const;
        const std::string& schemaText() const;
    };
    static constexpr const char* PosesLabel = "/tf";

    using Slots = std::map<std::string, const SlotCodec*>; // by label
    /// The out-slots that the root sees now; the tree is locked while they are copied. Any thread.
    static Slots look();
    /// Whether anything is other than before.
    bool update(Slots now);

    const std::map<std::uint32_t, Channel>& all() const { return _channels; }
    /// Labels of the slots that make poses.
    const std::vector<std::string>& poseLabels() const { return _poseLabels; }
    /// Null if there is none, or none any more.
    const Channel* find(std::uint32_t number) const;

private:
    std::map<std::uint32_t, Channel> _channels;
    std::vector<std::string> _poseLabels;
    std::uint32_t _last = 0;
};
} // namespace Monitor
