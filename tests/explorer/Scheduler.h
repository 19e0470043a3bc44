#pragma once

#include <boost/context/fiber.hpp>
#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace Explorer {

/// Ends the program with what went wrong and how to see it again.
[[noreturn]] void fail(const std::string& what);

inline void expect(bool holds, const char* what)
{
    if (!holds)
        fail(what);
}

/// Runs fibres in place of threads, one at a time, and decides at every step which of them goes on.
/// The one of the highest priority does; a few times in a run, at steps drawn at random, the running one falls behind
/// all others. So a fault that takes d such changes is found in any run with a chance that can be stated, and the same
/// seed repeats the same run.
/// Outside of fibres, before and after a run, steps mean nothing, and to sleep is a fault.
class Scheduler {
public:
    /// Length: of a run of this scenario, in steps, about; the changes fall within it.
    Scheduler(std::uint64_t seed, unsigned length, bool tracing);
    Scheduler(const Scheduler&) = delete;
    Scheduler& operator=(const Scheduler&) = delete;
    ~Scheduler();

    void spawn(std::function<void()> body);
    /// Until all fibres have ended. Fails when none can go on, or when there is no end.
    void run();

    unsigned steps() const { return _steps; }
    /// The same for two runs only if all choices were the same.
    std::uint64_t fingerprint() const { return _fingerprint; }

    /// For the synchronisation headers. The text and the object are for the trace.
    static void step(const char* what, const void* object);
    /// Until wake() names the object; the caller looks again then.
    static void sleepOn(const void* object);
    static void wakeOne(const void* object);
    static bool anybodySleepsOn(const void* object);

    /// Who runs: 0 outside of fibres.
    static int self();
    /// The ranks of the locks that the running fibre holds, one bit each.
    static unsigned& heldRanks();

private:
    struct Fibre;

    Fibre* choose();
    void switchTo(Fibre& fibre);
    void leave(bool forGood = false);
    boost::context::fiber enter(Fibre& fibre, boost::context::fiber&& back);
    std::vector<Fibre*> sleepersOn(const void* object) const;
    [[noreturn]] void failHanging() const;

    std::mt19937_64 _random;
    const bool _tracing;
    std::vector<unsigned> _changes; // the steps at which the running fibre falls behind, the last one first
    std::vector<std::unique_ptr<Fibre>> _fibres;
    Fibre* _running = nullptr;
    boost::context::fiber _main; // where the run goes on while a fibre runs
    unsigned _steps = 0;
    int _lowest = 0; // priority of the fibre that fell behind last
    std::uint64_t _fingerprint = 0;
    const void* _mainStack = nullptr; // for the address sanitizer, here and below
    std::size_t _mainStackSize = 0;
    void* _mainFakeStack = nullptr;
};

} // namespace Explorer
