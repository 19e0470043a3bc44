#pragma once

#include "base/Mutex.h"
#include "monitor/SceneView.h"
#include "scene/run/SensorWatch.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Host {

/// Copies of what sensors hold, for other threads: the scene thread makes them behind a frame when somebody asks, some
/// at a time, so that no frame is late for it. Text is made of them on the thread that asks.
/// Ownership: refers to the watches, which must live as long as endFrame() is called.
/// Threads:   endFrame() and end() from the scene thread, the rest from any.
class SensorValues {
public:
    explicit SensorValues(std::vector<Scenes::SensorWatch*> watches) { follow(std::move(watches)); }

    /// There are other watches from now on. Scene thread.
    void follow(std::vector<Scenes::SensorWatch*> watches) OSTREL_EXCLUDES(_lock);

    /// Copies for up to a millisecond, or one value where that takes longer, where somebody waits; else does nothing.
    /// `now` in wall-clock seconds.
    void endFrame(double now) OSTREL_EXCLUDES(_lock);
    /// Nobody waits any more, and no frame comes.
    void end() OSTREL_EXCLUDES(_lock);

    /// The value as JSON, by the sensor's title, not older than a quarter of a second; "null" where there is no such
    /// sensor, or no frame came for a second, for which it blocks once a second.
    std::string json(const std::string& title) OSTREL_EXCLUDES(_lock);
    /// The same for what was counted; waits for nothing that json() has just got.
    Monitor::ChangeCounts changes(const std::string& title) OSTREL_EXCLUDES(_lock);

private:
    using Time = std::chrono::steady_clock::time_point;
    struct Copy {
        std::unique_ptr<Ostrel::Field> _field; // null where the text was made at once
        std::string _json;
        Monitor::ChangeCounts _changes;
    };
    using Copies = std::vector<Copy>;                               // in the order of the watches
    using Positions = std::unordered_map<std::string, std::size_t>; // of the watches, by title
    /// What was made in one go: copies, and whose they are.
    struct Round {
        std::shared_ptr<const Positions> _byTitle;
        Copies _copies;
        const Copy* find(const std::string& title) const;
    };

    static Copy copyOf(const Scenes::SensorWatch& watch, double now);
    /// Those that are fresh, or null.
    std::shared_ptr<const Round> round(const std::string& title) OSTREL_EXCLUDES(_lock);
    bool isFresh() const OSTREL_REQUIRES(_lock);

    // The scene thread's.
    std::vector<Scenes::SensorWatch*> _watches;
    Copies _young;

    std::atomic<bool> _isWanted{false};
    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _news;
    std::shared_ptr<const Positions> _byTitle OSTREL_GUARDED_BY(_lock); // of the watches
    std::shared_ptr<const Round> _round OSTREL_GUARDED_BY(_lock);
    std::optional<Time> _made OSTREL_GUARDED_BY(_lock);
    Time _stuckUntil OSTREL_GUARDED_BY(_lock); // no frame came lately, so nobody waits for one
    bool _isOver OSTREL_GUARDED_BY(_lock) = false;
};
} // namespace Host
