#include "base/FutexLock.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <atomic>
#include <gtest/gtest.h>
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

// The mutexes tell the thread sanitizer what they order, whether they do or not. The lock below them tells it nothing.
TEST(FutexLock, OrdersWhatItGuards)
{
    constexpr long rounds = 50'000;
    Ostrel::FutexLock lock;
    long count = 0;
    const auto work = [&] {
        for (long i = 0; i < rounds; ++i) {
            while (i % 2 != 0 && !lock.tryLock())
                std::this_thread::yield();
            if (i % 2 == 0)
                lock.lock();
            ++count;
            lock.unlock();
        }
    };
    std::thread others[] = {std::thread(work), std::thread(work)};
    work();
    for (auto& other : others)
        other.join();
    EXPECT_EQ(count, 3 * rounds);
}
