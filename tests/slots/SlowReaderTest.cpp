#include "tests/support/Pace.h"
#include "trovio/BufferedInSlot.h"
#include "trovio/OutSlot.h"

#include <fstream>
#include <gtest/gtest.h>
#include <latch>
#include <unistd.h>

using namespace Trovio;

namespace {

std::uint64_t residentBytes()
{
    std::uint64_t all = 0, resident = 0;
    std::ifstream("/proc/self/statm") >> all >> resident;
    return resident * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
}

Data<SharedVector<float>> record(long number)
{
    SharedVector<float> values;
    values->assign(64, static_cast<float>(number));
    return {values, Time(static_cast<double>(number))};
}

/// Pops all that waits.
std::uint64_t drain(InSlot<SharedVector<float>>& slot)
{
    std::uint64_t taken = 0;
    for (; !slot.empty(); ++taken)
        slot.pop();
    return taken;
}

} // namespace

// OSTREL_SLOW_RECORDS and OSTREL_SLOW_RATE (a second) set how long the reader sleeps.
TEST(SlowReader, CostsNoMemoryAndNoRecordThatIsNotCounted)
{
    constexpr std::uint64_t most = 4U << 20U;
    const long records = fromEnvironment("OSTREL_SLOW_RECORDS", 600'000);
    OutSlot<SharedVector<float>> out("out");
    InSlot<SharedVector<float>> single("single");
    BufferedInSlot<SharedVector<float>> ring("ring", 1000);
    out.connect(&single);
    out.connect(&ring);
    std::latch asleep(1), wake(1);
    std::uint64_t taken = 0;
    std::thread reader([&] {
        ring.pop();
        asleep.count_down();
        wake.wait();
        taken = 1 + drain(ring);
    });
    out.push(record(0));
    asleep.wait();
    for (long i = 0; i < 2000; ++i) // all that a full ring takes
        out.push(record(i));
    const std::uint64_t before = residentBytes();
    Pace pace(fromEnvironment("OSTREL_SLOW_RATE", 0));
    for (long i = 0; i < records; ++i) {
        out.push(record(i));
        pace.next();
    }
    const std::uint64_t after = residentBytes();
    std::printf("%ld records, %lld KB more\n", records,
                (static_cast<long long>(after) - static_cast<long long>(before)) / 1024);
    EXPECT_LT(after, before + most);
    const InSlotCounts counts = ring.getCounts();
    EXPECT_EQ(counts.stored, out.getWritten());
    EXPECT_EQ(counts.stored, counts.overwritten + counts.taken + counts.waiting);
    EXPECT_EQ(counts.waiting, 1000U);
    wake.count_down();
    reader.join();
    EXPECT_EQ(ring.getCounts().taken, taken);
    EXPECT_EQ(out.getWritten(), counts.overwritten + taken);
    EXPECT_EQ(single.getCounts(), (InSlotCounts{out.getWritten(), out.getWritten() - 1, 0, 1}));
    out.disconnect(&single);
    out.disconnect(&ring);
}
