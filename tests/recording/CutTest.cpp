#include "monitor/mcap/Finish.h"
#include "tests/recording/LoggedDisk.h"
#include "tests/recording/RecordingFolder.h"
#include "tests/recording/Story.h"
#include "tests/support/Pace.h"

#include <fstream>
#include <gtest/gtest.h>

namespace {

using namespace Story;

/// A recording of many flushes, and how many messages were confirmed after each operation on the disk.
struct Written {
    Disk::Log _log;
    std::vector<std::uint64_t> _confirmed; // by operation
    std::error_code _problem;
    std::uint64_t _added = 0; // messages, without an error

    // A summary above 1 MiB is left out until the end, where `names` makes channels that take so much.
    explicit Written(int chunks, std::size_t failing = ~std::size_t{0}, std::size_t names = 0)
    {
        GrowingFile file(std::make_unique<Disk::Logged>(_log, failing));
        const auto keep = [&](std::error_code error) {
            _problem = _problem ? _problem : error;
            if (_log.size() == _confirmed.size())
                return;
            _confirmed.resize(_log.size() - 1, _confirmed.empty() ? 0 : _confirmed.back());
            _confirmed.push_back(file.messages());
        };
        keep(file.begin("test"));
        keep(file.add(Attachment{firstTime, 0, "scene.toml", "text/plain", asBytes("[host]\nrate = 60\n")}));
        keep(file.add(Metadata{"host", {{"version", "1"}}}));
        std::mt19937 random(1);
        for (std::uint64_t number = 0, done = 0; done < static_cast<std::uint64_t>(chunks); ++done) {
            const std::uint64_t count = 1 + random() % 40;
            ChunkBuilder next = chunk(number, count, done % 5 == 4 ? 2'000 : 100);
            if (names > 0 && done == 3)
                next.add(Channel{99, 0, std::string(names, 'n'), "cdr", {}});
            const std::error_code error = file.add(next);
            keep(error);
            _added += error ? 0 : count;
            if (random() % 3 == 0) // else the next one is written meanwhile
                keep(file.confirm());
            number += count;
        }
        keep(file.close());
    }
};

Found finish(const Bytes& bytes)
{
    const RecordingFolder folder;
    const std::string path = folder.file("cut.mcap");
    std::ofstream(path, std::ios::binary) << asText(bytes);
    finishFile(path, [](std::uint64_t, std::uint64_t) { return true; });
    return read(*InputFile::open(path));
}

testing::AssertionResult keepsConfirmed(const Written& written, std::size_t operations, const Bytes& file)
{
    const std::uint64_t confirmed = operations == 0 ? 0 : written._confirmed[operations - 1];
    const std::uint64_t next = written._confirmed[std::min(operations, written._confirmed.size() - 1)];
    if (confirmed == 0 && next == 0)
        return testing::AssertionSuccess();
    const Found found = read(file);
    if (isDamaged(found) || found._messages < confirmed)
        return testing::AssertionFailure() << "after " << operations << " operations: " << found._messages << " of "
                                           << confirmed << " messages; " << found._state._problem;
    const Found finished = finish(file);
    if (!finished._state._problem.empty() || !finished._state._indexed || finished._messages != found._messages)
        return testing::AssertionFailure()
               << "after " << operations << " operations: finished with " << finished._messages << " of "
               << found._messages << " messages; " << finished._state._problem;
    return testing::AssertionSuccess();
}

TEST(RecordingCut, KillsLoseNothingThatWasConfirmed)
{
    for (const std::size_t names : {std::size_t{0}, std::size_t{1'100'000}}) {
        const Written written(30, ~std::size_t{0}, names);
        ASSERT_FALSE(written._problem) << written._problem.message();
        std::mt19937 random(2);
        for (std::size_t last = 0; last < written._log.size(); ++last)
            EXPECT_TRUE(keepsConfirmed(written, last, Disk::afterKill(written._log, last, random)));
    }
}

TEST(RecordingCut, PowerCutsLoseNothingThatWasConfirmed)
{
    const Written written(30);
    const auto cuts = static_cast<unsigned>(fromEnvironment("OSTREL_POWER_CUTS", 60));
    for (unsigned seed = 0; seed < cuts; ++seed) {
        std::mt19937 random(seed);
        const std::size_t operations = 1 + random() % written._log.size();
        EXPECT_TRUE(keepsConfirmed(written, operations, Disk::afterPowerCut(written._log, operations, random)))
            << "seed " << seed;
    }
}

// Also the operations that put the old end back and end the file.
TEST(RecordingCut, FailureOfAnyOperationEndsTheRecordingAndLeavesAFileThatOpens)
{
    const Disk::Log all = Written(120)._log;
    ASSERT_GE(all.size(), 200U);
    for (std::size_t failing = 0; failing < all.size(); ++failing) {
        const Written written(120, failing);
        const Found found = read(Disk::after(written._log, written._log.size()));
        EXPECT_TRUE(written._problem) << failing;
        EXPECT_EQ(found._messages, written._confirmed.back()) << failing;
        EXPECT_TRUE(all[failing]._kind == Disk::Operation::Kind::Sync || found._messages == written._added) << failing;
        const bool isWhole = found._state._indexed && found._state._verdict == FileState::Verdict::Whole;
        EXPECT_TRUE(failing < 2 || (found._good && isWhole)) // before that there is no file yet
            << failing << ": " << found._state._problem;
    }
}

TEST(RecordingCut, SummaryThatWasLeftOutForItsSizeIsThereAtTheEnd)
{
    const Written written(10, ~std::size_t{0}, 1'100'000);
    const auto indexedAfter = [&](std::size_t operations) { return read(Disk::after(written._log, operations)); };
    const Found inBetween = indexedAfter(written._log.size() - 5);
    EXPECT_EQ(inBetween._state._verdict, FileState::Verdict::Whole) << inBetween._state._problem;
    EXPECT_FALSE(inBetween._state._indexed);
    EXPECT_TRUE(indexedAfter(written._log.size())._state._indexed);
}
} // namespace
