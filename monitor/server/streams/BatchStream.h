#pragma once

#include "monitor/server/streams/RoundStream.h"
#include "monitor/server/streams/Watches.h"

#include <map>
#include <nlohmann/json_fwd.hpp>
#include <unordered_map>

namespace Monitor {

/// ostrel.batch.v1: all records of a round in one text, for a page that shows many slots. The client says
/// {"op":"subscribe","labels":[…]} or "unsubscribe", also {"op":"pace","milliseconds":…}, and gets
/// {"op":"subscribed","slots":[{"id":…,"label":…}]}, then
/// {"op":"batch","records":[[id,time,stamp,value],…],"dropped":…}, where "dropped" are all that are missing so far;
/// before a batch with records that follow missing ones {"op":"batch","records":[],"gaps":[[id,number],…],"dropped":…}.
/// Threads: the server's.
class BatchStream final : public RoundStream {
public:
    static constexpr const char* Name = "ostrel.batch.v1";

    explicit BatchStream(Watches& watches) : _watches(watches) {}
    ~BatchStream() override { _watches.removeAll(*this); }

    void received(std::string_view message, bool isBinary) override;
    void take(const SeenRecord& seen) override;
    void miss(std::uint32_t number, std::uint64_t records) override;
    void endRound() override;
    std::chrono::milliseconds pace() const override { return _pace; }
    void drained() override { endRound(); }

private:
    void subscribe(const nlohmann::json& labels);
    void unsubscribe(const nlohmann::json& labels);
    void setPace(const nlohmann::json& object);
    void say(const nlohmann::json& object);
    std::string batchEnd() const;
    void makeGapsDue();
    void tellGaps();

    Watches& _watches;
    std::unordered_map<std::string, std::uint32_t> _numbers; // by label
    std::uint32_t _last = 0;
    std::chrono::milliseconds _pace = FastestPace;
    std::string _text; // of one record; its memory is used again
    // Missing records that the client has not been told of: before the round, and after its first record.
    std::map<std::uint32_t, std::uint64_t> _due, _gaps;
};
} // namespace Monitor
