#pragma once

#include "base/Mutex.h"
#include "monitor/codec/SlotCodec.h"
#include "monitor/tap/AnyTap.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace Monitor {

/// What became of the records that a slot pushed while it was looked at. When nobody pushes, after a drain:
/// seen == drained + refused.
struct TapCounts {
    std::string _label;
    std::uint64_t _seen = 0, _drained = 0, _refused = 0;
};

/// Who gets the records of one slot, without having to look its label up.
class TapReceiver {
public:
    virtual ~TapReceiver() = default;
    /// What it leaves in `record` is only memory, which is used again. The codec is that of the slot's type, which may
    /// change when a node is replaced.
    virtual void take(const SlotCodec& codec, TapRecord& record) = 0;
    /// After the records of a drain: so many were refused so far, more than at the last one.
    virtual void miss(std::uint64_t /*refused*/) {}
};

/// Looks at out-slots of the tree, with one tap for each, whoever looks. The taps stand in a namespace of their own
/// below the root, and a route leads from each slot to its tap: so a tap gets the slot's last value at once, and leaves
/// and comes back with it. Nothing of that is seen by inspect() and explain().
/// Ownership: made while the root is open, and destroyed before Trovio::Root::shutdown(): taps hold pooled objects.
/// Threads:   any, any operation.
class TapSet {
public:
    /// size: of each of the first 1,000 taps; those beyond get a sixteenth, so that who looks at everything does not
    /// use up memory. name: of the namespace, with "@" before it; a taken one gets a number.
    explicit TapSet(const TapSize& size = {}, const std::string& name = "@watch");
    ~TapSet();
    TapSet(const TapSet&) = delete;
    TapSet& operator=(const TapSet&) = delete;

    /// Looks at the out-slot with that label, as the root sees it; each call asks for one remove(). False, and looks at
    /// nothing, if there is none now. The receiver that the first add() gives gets what drain() hands out of the slot.
    bool add(const std::string& label, std::shared_ptr<TapReceiver> receiver = nullptr) OSTREL_EXCLUDES(_lock);
    /// What to say where add() looked at nothing.
    static std::string whyNot(const std::string& label);
    /// Whether the label cannot stand for one slot in a route.
    static bool isPattern(const std::string& label) { return label.find('*') != std::string::npos; }
    void remove(const std::string& label) OSTREL_EXCLUDES(_lock);

    /// Hands out what has come, by the time of its arrival: to `use` what has no receiver. What they throw goes on; the
    /// rest of that round is refused then. Under no lock.
    using Use = std::function<void(const std::string& label, const SlotCodec& codec, TapRecord&& record)>;
    void drain(const Use& use = nullptr) OSTREL_EXCLUDES(_lock);

    /// Whether the next drain() may come later than after a round of the shortest length: the last one found every tap
    /// that stands now, with many places, and nearly all of them free. So the last value of a new one comes soon.
    bool isRoomy() const OSTREL_EXCLUDES(_lock);

    /// Seconds by which the arrivals that the last drain() handed out may be wrong.
    double arrivalBound() const OSTREL_EXCLUDES(_lock);

    /// By label, of all that are looked at now.
    std::vector<TapCounts> getCounts() const OSTREL_EXCLUDES(_lock);
    /// Of one; zeros where it is not looked at.
    TapCounts getCounts(const std::string& label) const OSTREL_EXCLUDES(_lock);

private:
    /// Of one label, whatever taps stand there one after the other. Under the lock.
    struct Tally {
        std::uint64_t _seen = 0, _refused = 0; // by taps that stood here before
        std::uint64_t _drained = 0;            // handed out
        std::uint64_t _unwritten = 0;          // drained by a tap, and not handed out: no memory, or what threw
        std::uint64_t _told = 0;               // of all refused so far, those that the receiver knows of
    };
    struct Watched {
        const std::string _label;
        const SlotCodec& _codec;
        const std::unique_ptr<AnyTap> _tap;
        const std::shared_ptr<Tally> _tally;
        const std::shared_ptr<TapReceiver> _receiver; // null where labels are looked up
        std::size_t _users = 1;                       // under the lock
    };
    /// What one tap adds to a round.
    struct Share {
        std::shared_ptr<const Watched> _watched; // which may be removed meanwhile
        std::uint64_t _refused = 0;              // so far, but for those unwritten
        std::uint64_t _collected = 0, _handedOut = 0;
    };
    struct Arrived {
        Share* _share = nullptr;
        TapRecord _record;
        std::function<void(Bytes&)> _encode; // where the message is not written yet

        bool write();
        void handOut(const Use& use);
    };
    struct Loss {
        const Watched* _watched;
        std::uint64_t _refused; // so far
    };
    /// What one drain found. Its memory goes on to the next.
    struct Round {
        std::vector<Share> _shares; // stay where they are
        std::vector<Loss> _losses;
        std::vector<Arrived> _arrived; // the first _count; the others are of earlier rounds
        std::size_t _count = 0;
        std::vector<Arrived*> _order;
        Bytes _large; // where messages are written when they are handed out
        bool _needsLarge = false;

        TapRecord& place();
        void keep(Share& share, std::function<void(Bytes&)> encode);
        void handOut(const Use& use);
        void handOutLarge(Arrived& arrived, const Use& use);
        void reserve(std::size_t taps);
        void sort();
        void forget();
    };
    class RoundSink;

    /// Null if there is no such out-slot.
    std::shared_ptr<Watched> makeWatched(const std::string& label, std::shared_ptr<Tally> tally,
                                         std::shared_ptr<TapReceiver> receiver) const OSTREL_REQUIRES(_lock);
    static TapCounts countsOf(const Watched& watched);
    void wire(Watched& watched) const;
    void unwire(const std::string& label) const;
    void renewTypes(std::int64_t now) OSTREL_REQUIRES(_lock);
    Round collect() OSTREL_EXCLUDES(_lock);
    bool collectFrom(const std::shared_ptr<Watched>& watched, std::int64_t wallAtZero, Round& round)
        OSTREL_REQUIRES(_lock);
    void settle(Round& round) OSTREL_EXCLUDES(_lock);
    void tellLosses(const Round& round) OSTREL_EXCLUDES(_lock);

    const TapSize _size;
    std::string _space; // label of the namespace

    // Unranked, and before the tree's: taps are wired under it.
    mutable Ostrel::Mutex _lock;
    std::map<std::string, std::shared_ptr<Watched>> _watched OSTREL_GUARDED_BY(_lock);
    std::int64_t _nextRenewal OSTREL_GUARDED_BY(_lock) = 0;  // nanoseconds of the steady clock
    std::int64_t _arrivalBound OSTREL_GUARDED_BY(_lock) = 0; // nanoseconds
    bool _isRoomy OSTREL_GUARDED_BY(_lock) = true;
    Round _spare OSTREL_GUARDED_BY(_lock);
};

} // namespace Monitor
