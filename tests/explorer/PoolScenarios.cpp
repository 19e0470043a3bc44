#include "Rig.h"
#include "base/FutexLock.h"
#include "base/Semaphore.h"
#include "tests/storms/PoolCheck.h"

namespace Explorer {

using Handle = Trovio::SmartPtr<Halves>;

} // namespace Explorer

template <>
Trovio::Cache<Explorer::Halves> Trovio::Cache<Explorer::Halves>::the_{};

template <>
struct Trovio::TypeName<Explorer::Handle> {
    static std::string getName() { return "Handle"; }
};

namespace Explorer {

namespace {

Handle acquire(long number)
{
    Handle handle;
    handle.acquire();
    *handle = Halves(number);
    return handle;
}

void expectStill(const Handle& handle, long number)
{
    expect(std::as_const(handle)->number() == number, "an object was reused while somebody held it");
}

/// One travels through a slot while others take from the pool and give back.
void releaseAgainstAcquire(Scheduler& scheduler)
{
    {
        Trovio::OutSlot<Handle> out("out");
        Trovio::InSlot<Handle> in("in");
        out.connect(&in);
        scheduler.spawn([&] {
            for (long number = 1; number <= 2; ++number)
                out.push(Trovio::Data<Handle>(acquire(number), Trovio::Time(0)));
        });
        scheduler.spawn([&] {
            for (long number = 0; number != 2;) {
                const Trovio::Data<Handle> record = in.pop();
                const Handle& value = record.getValue();
                const long before = std::exchange(number, std::as_const(value)->number());
                expect(number > before && number <= 2, "a reader got another record than was sent");
                expectStill(value, number);
            }
        });
        scheduler.spawn([&] {
            for (long number = 3; number <= 4; ++number) {
                Handle handle = acquire(number);
                const Handle copy(handle);
                handle = acquire(-number);
                expectStill(copy, number);
                expectStill(handle, -number);
            }
        });
        scheduler.run();
        out.disconnect(&in);
    }
    expect(poolIsWhole<Halves>(), "an object did not come back to its pool");
}

void semaphore(Scheduler& scheduler)
{
    Ostrel::FutexLock lock;
    Ostrel::Semaphore semaphore;
    int inside = 0;
    int posted = 0;
    int passed = 0;
    const auto holding = [&] {
        expect(++inside == 1, "two threads hold one lock");
        Scheduler::step("hold", &lock);
        --inside;
    };
    // The analysis knows the mutex that is built on this lock, not the lock itself.
    for (int i = 0; i < 3; ++i)
        scheduler.spawn([&]() OSTREL_NO_THREAD_SAFETY_ANALYSIS {
            lock.lock();
            semaphore.wait(lock);
            holding();
            expect(++passed <= posted, "a token was taken that nobody had posted");
            lock.unlock();
        });
    for (const int tokens : {1, 2})
        scheduler.spawn([&, tokens] {
            for (int i = 0; i < tokens; ++i) {
                lock.lock();
                holding();
                ++posted;
                const std::uint32_t wakes = semaphore.post();
                lock.unlock();
                semaphore.wake(wakes);
            }
        });
    scheduler.run();
    expect(passed == 3, "a token was lost");
}

constexpr Scenario scenarios[] = {
    {"pool_release_against_acquire", "shared objects travel and come back while others are taken",
     releaseAgainstAcquire},
    {"semaphore", "the semaphore and the lock themselves, each use of a word a step", semaphore},
};

} // namespace

std::span<const Scenario> poolScenarios()
{
    return scenarios;
}

} // namespace Explorer
