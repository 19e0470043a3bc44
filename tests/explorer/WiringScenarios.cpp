#include "Rig.h"
#include "base/Semaphore.h"
#include <optional>

namespace Explorer {

namespace {

void connectDisconnectPush(Scheduler& scheduler)
{
    Out out("out");
    In in("in");
    scheduler.spawn([&] {
        in.connect(&out);
        out.disconnect(&in);
    });
    scheduler.spawn([&] {
        in.disconnect(&out);
        out.connect(&in);
    });
    scheduler.spawn([&] {
        push(out, 1);
        push(out, 2);
    });
    scheduler.run();
    expectAgreement(out, in, 0, 1); // each disconnect may have found nothing
}

void twoConnects(Scheduler& scheduler)
{
    Out out("out");
    In in("in");
    push(out, 1);
    scheduler.spawn([&] { out.connect(&in); });
    scheduler.spawn([&] { in.connect(&out); });
    scheduler.spawn([&] { push(out, 2); });
    scheduler.run();
    expect(in.top().getValue().number() == 2, "the newest record did not arrive");
    expect(in.getCounts().stored <= 2, "a second connection delivered the last record again");
    expectAgreement(out, in, 2, 2);
}

/// Two out-slots and two in-slots, each wired to both of the others from both sides while all push.
void crossedPairs(Scheduler& scheduler)
{
    Out outs[2]{Out("a"), Out("b")};
    In ins[2]{In("x"), In("y")};
    for (int i = 0; i < 2; ++i)
        scheduler.spawn([&, i] {
            outs[i].connect(&ins[i]);
            push(outs[i], i + 1);
            ins[1 - i].connect(&outs[i]);
            ins[i].disconnect(&outs[i]);
        });
    scheduler.run();
    for (int i = 0; i < 2; ++i)
        expectAgreement(outs[i], ins[1 - i], 1, 1);
}

/// The owner takes a slot away as it has to: releases the reader, waits until it is gone, disconnects, destroys.
void destroyInSlot(Scheduler& scheduler)
{
    Out out("out");
    std::optional<In> in(std::in_place, "in");
    Ostrel::Mutex lock;
    Ostrel::Semaphore readerEnded;
    out.connect(&*in);
    scheduler.spawn([&] {
        for (long number = 1; number <= 3; ++number)
            push(out, number);
    });
    scheduler.spawn([&] {
        for (long number = 0; popUnlessInterrupted(*in, number);)
            expect(number >= 1 && number <= 3, "a value came that nobody sent");
        lock.lock();
        const std::uint32_t wakes = readerEnded.post();
        lock.unlock();
        readerEnded.wake(wakes);
    });
    scheduler.spawn([&] {
        in->interrupt();
        lock.lock();
        readerEnded.wait(lock);
        lock.unlock();
        in->disconnect(&out);
        in.reset();
    });
    scheduler.run();
    expect(!out.isActive(), "a producer believes in a reader that is gone");
}

void destroyOutSlot(Scheduler& scheduler)
{
    std::optional<Out> out(std::in_place, "out");
    In in("in");
    Out other("other");
    long taken = 0;
    scheduler.spawn([&] {
        out->connect(&in);
        push(*out, 1);
        out->disconnect(&in);
        out.reset();
    });
    scheduler.spawn([&] { other.connect(&in); });
    scheduler.spawn([&] { taken = pop(in); });
    scheduler.run();
    expect(taken == 1, "a record went with its sender");
    expectAccounts(in, 1, 1);
    expectAgreement(other, in, 1, 1);
}

constexpr Scenario scenarios[] = {
    {"connect_disconnect_push", "one pair, wired from both sides while its producer pushes", connectDisconnectPush},
    {"two_connects", "one pair, connected twice at once while its producer pushes", twoConnects},
    {"crossed_pairs", "two producers, two readers, wired crosswise", crossedPairs},
    {"destroy_in_slot", "a slot ends between its reader and its producer", destroyInSlot},
    {"destroy_out_slot", "a producer's slot ends while others use its reader", destroyOutSlot},
};

} // namespace

std::span<const Scenario> wiringScenarios()
{
    return scenarios;
}

} // namespace Explorer
