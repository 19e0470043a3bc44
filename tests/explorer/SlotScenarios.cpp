#include "Rig.h"
#include "trovio/TryPop.h"

namespace Explorer {

namespace {

constexpr char brokenOrder[] = "a reader got an older record after a newer one";

/// Takes records until the last one of a producer, which is never overwritten. Returns how many.
unsigned readUntil(In& slot, long lastNumber)
{
    unsigned taken = 0;
    for (long number = 0, before = 0; number != lastNumber; before = number)
        if (popUnlessInterrupted(slot, number)) {
            ++taken;
            expect(number > before, brokenOrder);
        }
    return taken;
}

void pushAgainstPop(Scheduler& scheduler)
{
    Out out("out");
    In in("in");
    out.connect(&in);
    unsigned taken = 0;
    scheduler.spawn([&] {
        for (long number = 1; number <= 3; ++number)
            push(out, number);
    });
    scheduler.spawn([&] { taken = readUntil(in, 3); });
    scheduler.run();
    expectAccounts(in, 3, taken);
    expect(out.getWritten() == 3, "a push was not counted");
}

void popInterruptAndTop(Scheduler& scheduler)
{
    In in("in");
    unsigned taken = 0;
    int seenByTop = 0;
    scheduler.spawn([&] {
        push(in, 1);
        push(in, 2);
    });
    scheduler.spawn([&] { taken = readUntil(in, 2); });
    scheduler.spawn([&] {
        in.interrupt();
        in.interrupt();
    });
    scheduler.spawn([&] {
        for (int i = 0; i < 3; ++i)
            seenByTop += topIsInterrupted(in);
    });
    scheduler.run();
    expect(seenByTop <= 2, "more interrupts came than were sent");
    topIsInterrupted(in); // one that nobody saw yet
    expect(!topIsInterrupted(in), "an interrupt came twice");
    expectAccounts(in, 2, taken);
}

void fullRing(Scheduler& scheduler)
{
    Ring ring("ring", 2);
    std::vector<long> taken;
    for (const long producer : {100, 200})
        scheduler.spawn([&ring, producer] {
            for (long number = 1; number <= 3; ++number)
                push(ring, producer + number);
        });
    scheduler.spawn([&] {
        for (int i = 0; i < 2; ++i) // so many are there even if nobody reads before the end
            taken.push_back(pop(ring));
    });
    scheduler.run();
    const Trovio::InSlotCounts counts = ring.getCounts();
    expect(counts.stored == 6 && counts.waiting <= 2, "a ring holds more than it can");
    expect(counts.stored == counts.overwritten + counts.taken + counts.waiting, "the counts do not add up");
    const std::vector<long> left = drain(ring);
    expect(counts.taken == taken.size() && counts.waiting == left.size(), "records were lost or invented");
    taken.insert(taken.end(), left.begin(), left.end());
    long last[3] = {};
    for (const long number : taken)
        expect(number % 100 > std::exchange(last[number / 100], number % 100), brokenOrder);
    expect(taken.back() % 100 == 3, "a full ring dropped the newest record");
}

/// What a frame does with a slot: looks without a lock, and takes what waits. Returns how many.
unsigned serviceFrame(In& slot, long& last)
{
    unsigned taken = 0;
    const auto use = [&](const auto& record) {
        ++taken;
        expect(record.getValue().number() > std::exchange(last, record.getValue().number()), brokenOrder);
    };
    while (slot.mayHoldRecord() && Trovio::tryPop<Halves>(slot, use))
        ;
    return taken;
}

template <class SlotT>
void frameAgainstPush(Scheduler& scheduler, SlotT& slot)
{
    long pushed = 0;
    long last = 0;
    unsigned taken = 0;
    scheduler.spawn([&] {
        for (long number = 1; number <= 3; ++number) {
            push(slot, number);
            pushed = number;
        }
    });
    scheduler.spawn([&] {
        for (int frame = 0; frame < 3; ++frame) {
            const long before = pushed;
            taken += serviceFrame(slot, last);
            expect(last >= before, "a record that was pushed before a frame was left for the next one");
        }
    });
    scheduler.run();
    taken += serviceFrame(slot, last);
    expect(last == 3 && !slot.mayHoldRecord(), "the last record was not seen, or is said to wait still");
    expectAccounts(slot, 3, taken);
}

void frameAgainstPushes(Scheduler& scheduler)
{
    In in("in");
    frameAgainstPush(scheduler, in);
}

void frameAgainstRing(Scheduler& scheduler)
{
    Ring ring("ring", 2);
    frameAgainstPush(scheduler, ring);
}

/// The reader may be woken for a record that the frame then takes.
void frameBesideReader(Scheduler& scheduler)
{
    Ring ring("ring", 4);
    long last = 0;
    long popped = 0;
    unsigned taken = 0;
    scheduler.spawn([&] { popped = pop(ring); });
    scheduler.spawn([&] {
        push(ring, 1);
        push(ring, 2);
    });
    scheduler.spawn(
        [&] { taken = Trovio::tryPop<Halves>(ring, [&](const auto& record) { last = record.getValue().number(); }); });
    scheduler.run();
    expect(popped != last && popped != 0, "the reader and the frame did not get a record each");
    expectAccounts(ring, 2, 1 + taken);
}

/// For one who calls down() apart from the lock: false for an interrupt. Adds to inVain how often there was neither
/// that nor a record.
bool awaitRecord(In& slot, unsigned& inVain)
{
    for (;; ++inVain) {
        slot.down();
        if (topIsInterrupted(slot))
            return false;
        if (slot.getCounts().waiting != 0)
            return true;
    }
}

/// Of a reader who was promised a record by down(): gives it back, unless it is not there any more.
bool giveBack(In& slot)
{
    if (slot.getCounts().waiting == 0)
        return false;
    slot.lock();
    Trovio::Hooks::putBack(slot);
    slot.unlock();
    return true;
}

/// What top() takes from an interrupt is a token too many, which the frame or down() may meet.
void frameBesideDown(Scheduler& scheduler)
{
    Ring ring("ring", 4);
    unsigned taken = 0, inVain = 0, seenByTop = 0, running = 4;
    const auto spawn = [&](const std::function<void()>& run) {
        scheduler.spawn([&ring, &running, run] {
            run();
            if (--running == 0)
                ring.interrupt(); // the reader need not wait any more
        });
    };
    scheduler.spawn([&] {
        for (int round = 0; round < 2 && awaitRecord(ring, inVain); ++round)
            inVain += !giveBack(ring);
    });
    spawn([&] {
        push(ring, 1);
        push(ring, 2);
    });
    spawn([&] {
        for (int frame = 0; frame < 3; ++frame)
            taken += tryPopUnlessInterrupted(ring);
    });
    spawn([&] { ring.interrupt(); });
    spawn([&] {
        for (int i = 0; i < 2; ++i)
            seenByTop += topIsInterrupted(ring);
    });
    scheduler.run();
    expect(inVain <= seenByTop, "down() returned for nothing more often than top() took an interrupt");
    expectAccounts(ring, 2, taken);
}

constexpr Scenario scenarios[] = {
    {"push_against_pop", "a producer and a reader that sleeps", pushAgainstPop},
    {"pop_interrupt_top", "top() takes interrupts from a sleeping reader, and both are pushed to", popInterruptAndTop},
    {"full_ring", "two producers overrun a ring under its reader", fullRing},
    {"frame_against_push", "a frame looks without a lock and takes without waiting", frameAgainstPushes},
    {"frame_against_ring", "the same from a ring that is overrun", frameAgainstRing},
    {"frame_beside_reader", "a frame and a reader that sleeps take from the same ring", frameBesideReader},
    {"frame_beside_down", "a frame, down() and top() beside an interrupt", frameBesideDown},
};

} // namespace

std::span<const Scenario> slotScenarios()
{
    return scenarios;
}

} // namespace Explorer
