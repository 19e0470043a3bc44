#pragma once

#include "base/Mutex.h"
#include "trovio/Time.h"
#include <atomic>
#include <condition_variable>
#include <memory>
#include <optional>
#include <span>
#include <thread>
#include <vector>

namespace Trovio {

/// Virtual time for all nodes, and a baton without which none of their threads moves: so what nodes do follows from
/// what they get and when, and is the same every time. While there is a stepper, Time::getCurrentTime() and the clock
/// of nodes say its time, which moves in advance() only. A thread of a node goes on from where it waits when it was
/// called or its time has come, one thread after the other, in the order in which they were started. A thread that
/// waits elsewhere than in a turn of this is not held back, and its values come at any time. Order:   made before the
/// nodes, destroyed after them. One object per process at a time; made again, time begins again. Threads: made,
/// advanced and destroyed by one thread, which has the baton while no other one has it. The static
///          operations are for any thread.
class Stepper {
public:
    class Turn;

    /// Descriptors that threads wait for, such as sockets: either they wake nobody, so that nothing comes in from
    /// outside, or they are looked at once in each advance().
    enum class Descriptors { Ignored, Watched };

    /// Time stands still at that date.
    explicit Stepper(const Time& start, Descriptors descriptors = Descriptors::Ignored);
    ~Stepper();
    Stepper(const Stepper&) = delete;
    Stepper& operator=(const Stepper&) = delete;

    static bool isActive() { return _active.load(std::memory_order_acquire); }
    /// Virtual seconds since the stepper was made. Only while it is active, like date().
    static double now() { return _now.load(std::memory_order_relaxed); }
    static Time date() { return Time(_date.load(std::memory_order_relaxed)); }

    /// Lets the threads do all that is due up to that date, and stands there; what was due before the date that it is
    /// already is done, too. Returns when all of them wait.
    void advance(const Time& until) OSTREL_EXCLUDES(_lock);

    /// For a thread that is just being started; null where no stepper is active. `called` is set by whoever wants the
    /// thread to go on, and cleared by the thread.
    static std::unique_ptr<Turn> join(const std::atomic<bool>& called);

    /// How many threads have joined so far.
    std::size_t countJoined() const OSTREL_EXCLUDES(_lock);

private:
    void run(Turn& turn) OSTREL_REQUIRES(_lock);
    void give(Turn* to) OSTREL_REQUIRES(_lock);
    void waitForBaton(Turn* me) OSTREL_REQUIRES(_lock);
    bool hasBaton() const OSTREL_REQUIRES(_lock); // the calling thread
    Turn* nextReady(double target) OSTREL_REQUIRES(_lock);
    void lookAtDescriptors() OSTREL_REQUIRES(_lock);
    void moveTo(double now) OSTREL_REQUIRES(_lock);

    static std::atomic<bool> _active;
    static std::atomic<double> _now, _date; // seconds
    static Stepper* _only;

    const double _start;
    const Descriptors _descriptors;
    const std::thread::id _driver;

    mutable Ostrel::Mutex _lock{Ostrel::LockRank::Leaf};
    std::condition_variable_any _driverGoesOn;
    std::vector<Turn*> _turns OSTREL_GUARDED_BY(_lock); // in the order in which they joined
    std::size_t _joined OSTREL_GUARDED_BY(_lock) = 0;
    Turn* _holder OSTREL_GUARDED_BY(_lock) = nullptr; // of the baton; null for the driver
};

/// The part that one thread takes in this.
/// Ownership: refers to the stepper and to the flag that it was made with. Destroyed after the thread.
class Stepper::Turn {
public:
    ~Turn();
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;

    // The thread. Each returns once it has the baton, but for the last.
    void begin();
    /// Until it was called or `until` has come on the clock of now(), or one of the descriptors is ready where these
    /// are watched.
    void wait(std::optional<double> until, std::span<const int> descriptors);
    void end();

    /// Another thread: lets the thread run, as often as it waits, until it has ended.
    void finish();

private:
    friend class Stepper;
    Turn(Stepper& stepper, const std::atomic<bool>& called);

    Stepper& _stepper;
    const std::atomic<bool>& _called;
    std::condition_variable_any _goesOn;

    // All under the stepper's lock.
    std::thread::id _thread;
    Turn* _giver = nullptr; // who gets the baton back; null for the driver
    double _until;
    double _ranAt = -1; // when it last went on because its time had come
    std::span<const int> _descriptors;
    bool _isReadable = false, _isFinishing = false, _hasEnded = false;
};

} // namespace Trovio
