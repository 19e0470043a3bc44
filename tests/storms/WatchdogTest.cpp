#include "Watchdog.h"

#include <gtest/gtest.h>
#include <latch>

// With linkage, so that the stack can name it.
[[gnu::noinline]] void waitForEver(std::latch& there, std::latch& never)
{
    there.count_down();
    never.wait();
    never.count_down(0); // a call in tail position would leave no frame
}

TEST(WatchdogDeathTest, ShowsTheStackOfAThreadThatWaitsForEver)
{
    const auto stall = [] {
        std::latch there(1);
        std::latch never(1);
        std::thread waiting([&] { waitForEver(there, never); });
        there.wait();
        const Watchdog watchdog(std::chrono::seconds(0));
        waiting.join();
    };
    EXPECT_EXIT(stall(), ::testing::KilledBySignal(SIGABRT), "nothing happened for 0 s(.|\n)*waitForEver");
}
