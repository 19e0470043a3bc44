#pragma once

#include "monitor/codec/Poses.h"
#include "monitor/server/streams/Watches.h"

#include <map>
#include <set>

namespace Monitor {

/// Who gets poses. Threads: the server's.
class PoseViewer {
public:
    virtual ~PoseViewer() = default;
    /// The poses of a round, or the newest ones at the start, as one message.
    virtual void takePoses(const TapRecord& poses) = 0;
    /// Records that would have made some found no room in a tap.
    virtual void missPoses(std::uint64_t records) = 0;
    /// The records of a slot make no poses; told once for each.
    virtual void hearWhyNone(const std::string& text) = 0;
};

/// The poses that all slots make, one message a round. It watches those slots while somebody watches it.
/// Ownership: refers to the watches, and to viewers, which remove themselves before they go.
/// Threads:   the server's.
class PoseFeed final : public Stream {
public:
    explicit PoseFeed(Watches& watches) : _watches(watches) {}
    ~PoseFeed() override { _watches.removeAll(*this); }

    /// The slots that make poses now, by label.
    void setSlots(const std::vector<std::string>& labels);

    void add(PoseViewer& viewer);
    void remove(PoseViewer& viewer);

    void received(std::string_view, bool) override {}
    void take(const SeenRecord& seen) override;
    void endRound() override;

private:
    void watchAll();

    Watches& _watches;
    Poses _poses;
    std::set<std::string> _labels, _watched;
    std::map<std::string, std::string> _problems; // by label
    std::set<PoseViewer*> _viewers;
    TapRecord _newest;       // of the round
    std::uint64_t _told = 0; // of the records that found no room
};
} // namespace Monitor
