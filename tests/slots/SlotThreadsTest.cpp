#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <array>
#include <gtest/gtest.h>
#include <latch>
#include <thread>

using namespace Trovio;

// Rounds that hand over one by one reach the sleeping path of both threads again and again.
TEST(SlotThreads, PopSleepsUntilTheNextPush)
{
    constexpr long rounds = 20'000;
    OutSlot<long> ping("ping");
    OutSlot<long> pong("pong");
    InSlot<long> pingIn("ping");
    InSlot<long> pongIn("pong");
    ping.connect(&pingIn);
    pong.connect(&pongIn);
    std::thread echo([&] {
        for (long i = 0; i < rounds; ++i)
            pong.push(pingIn.pop());
    });
    for (long i = 0; i < rounds; ++i) {
        ping.push(Data<long>(i, Time(0)));
        ASSERT_EQ(pongIn.pop().getValue(), i);
    }
    echo.join();
    ping.disconnect(&pingIn);
    pong.disconnect(&pongIn);
}

TEST(SlotThreads, InterruptReleasesASleepingReaderEachTime)
{
    constexpr int rounds = 2'000;
    BufferedInSlot<long> slot("in", 4);
    std::atomic<int> released{0};
    std::thread reader([&] {
        while (released < rounds) {
            try {
                slot.pop();
            } catch (const InterruptedException&) {
                ++released;
                released.notify_one();
            }
        }
    });
    for (int round = 0; round < rounds; ++round) {
        slot.interrupt();
        released.wait(round);
    }
    reader.join();
    EXPECT_TRUE(slot.empty());
}

// top() takes interrupts away from under a reader that they have already woken: it must neither return nor hang.
TEST(SlotThreads, InterruptTakenByTopInventsNoValue)
{
    constexpr long values = 5'000;
    BufferedInSlot<long> slot("in", 8);
    std::atomic<bool> done{false};
    std::atomic<long> taken{0};
    std::thread reader([&] {
        for (long expected = 1; expected <= values;) {
            try {
                EXPECT_EQ(slot.pop().getValue(), expected);
                ++expected;
                ++taken;
                taken.notify_one();
            } catch (const InterruptedException&) {
            }
        }
    });
    std::thread interrupter([&] {
        while (!done) {
            slot.interrupt();
            try {
                slot.top();
            } catch (const InterruptedException&) {
            }
        }
    });
    for (long i = 1; i <= values; ++i) {
        slot.push(Data<long>(i, Time(0)));
        taken.wait(i - 1);
    }
    done = true;
    reader.join();
    interrupter.join();
}

// Producers push while pairs are wired and unwired and readers come and go; afterwards every record is accounted for.
TEST(SlotThreads, CountsAddUpUnderDisconnectsAndInterrupts)
{
    constexpr std::size_t producers = 2;
    constexpr long recordsEach = 20'000;
    std::array<OutSlot<SharedVector<long>>, producers> outs{OutSlot<SharedVector<long>>("a"),
                                                            OutSlot<SharedVector<long>>("b")};
    BufferedInSlot<SharedVector<long>> ring("ring", 16);
    InSlot<SharedVector<long>> single("single");
    std::atomic<bool> done{false};
    std::uint64_t popped = 0;

    std::thread reader([&] {
        while (!done) {
            try {
                ring.pop();
                ++popped;
            } catch (const InterruptedException&) {
            }
        }
    });
    std::thread wirer([&] {
        while (!done)
            for (auto& out : outs) {
                out.connect(&ring);
                single.connect(&out);
                out.connect(&ring);
                out.disconnect(&ring);
                out.disconnect(&single);
                ring.disconnect(&out);
                ring.interrupt();
            }
    });
    std::array<std::thread, producers> pushers;
    for (std::size_t i = 0; i < producers; ++i)
        pushers[i] = std::thread([&, i] {
            for (long n = 0; n < recordsEach; ++n) {
                SharedVector<long> values;
                values.acquire();
                values->assign(3, n);
                outs[i].push(Data(values, Time(0)));
            }
        });
    for (auto& pusher : pushers)
        pusher.join();
    done = true;
    wirer.join();
    ring.interrupt();
    reader.join();

    const InSlotCounts counts = ring.getCounts();
    std::uint64_t waiting = 0;
    for (; !ring.empty(); ++waiting)
        try {
            ring.pop();
        } catch (const InterruptedException&) {
            --waiting;
        }
    EXPECT_EQ(counts.taken, popped);
    EXPECT_EQ(counts.waiting, waiting);
    EXPECT_EQ(counts.stored, counts.overwritten + popped + waiting);
    EXPECT_EQ(single.getCounts().stored, single.getCounts().overwritten + single.getCounts().waiting);
    for (auto& out : outs)
        EXPECT_EQ(out.getWritten(), static_cast<std::uint64_t>(recordsEach));
}
