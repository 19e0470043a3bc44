#pragma once

#include "base/Mutex.h"
#include "osg/LogMessage.h"
#include "osg/RateLimiter.h"
#include <atomic>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace osg {

/// Keeps a source that has much to say from filling the log: of each source (module and file of a message) so many
/// messages a second get through, and the rest is counted (see RateLimiter). Threads: any; no message is written under
/// the lock.
class LogLimit {
public:
    static constexpr unsigned defaultRate = 20;

    /// What was held back of one source.
    struct Held {
        std::string _module;
        std::string _file;
        int _level; // the most severe of them
        std::uint64_t _count;
    };

    /// Messages a second of each source; 0 lets all through.
    void setRate(unsigned perSecond) { _rate.store(perSecond, std::memory_order_relaxed); }
    unsigned rate() const { return _rate.load(std::memory_order_relaxed); }

    /// Whether the message may be written. `now` in seconds of a clock that nobody sets.
    bool admit(int level, const LogPlace& place, double now) OSTREL_EXCLUDES(_lock);

    /// Takes the counts of all sources whose second is over; of all at infinity. Quick while nothing is held.
    std::vector<Held> takeHeld(double now) OSTREL_EXCLUDES(_lock);

private:
    struct Source {
        RateLimiter _limiter{1};
        int _level = 0; // the most severe of those held back
    };

    std::atomic<unsigned> _rate{defaultRate};
    std::atomic<bool> _anyHeld{false};
    Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::map<std::pair<std::string, std::string>, Source> _sources OSTREL_GUARDED_BY(_lock); // as many as write at all
};

} // namespace osg
