#include "tests/recording/LoggedDisk.h"
#include "tests/recording/Story.h"

#include "monitor/mcap/Finish.h"
#include "tests/recording/RecordingFolder.h"

#include <fstream>
#include <gtest/gtest.h>
#include <stdexcept>

namespace {

using namespace Story;
using Verdict = FileState::Verdict;

Bytes smallFile(GrowingFile::Compression compression = GrowingFile::Compression::None)
{
    Disk::Log log;
    GrowingFile file(std::make_unique<Disk::Logged>(log), compression);
    EXPECT_FALSE(file.begin("test"));
    EXPECT_FALSE(file.add(Attachment{firstTime, 0, "scene.toml", "text/plain", asBytes("[host]")}));
    for (std::uint64_t number = 0; number < 12; number += 4) {
        ChunkBuilder next = chunk(number, 4, 30);
        EXPECT_FALSE(file.add(next));
    }
    EXPECT_FALSE(file.close());
    return Disk::after(log, log.size());
}

TEST(RecordingDamage, WholeFileGivesBackWhatWasWritten)
{
    for (const auto compression : {GrowingFile::Compression::None, GrowingFile::Compression::Zstd}) {
        const Found found = read(smallFile(compression));
        EXPECT_EQ(found._state._verdict, Verdict::Whole) << found._state._problem;
        EXPECT_TRUE(found._state._indexed && found._state._sealed && found._good);
        EXPECT_EQ(found._messages, 12U);
        EXPECT_EQ(found._attachments, std::vector<std::string>{"[host]"});
    }
}

// What is wrong only in the mark between data and summary, or in the last magic, looks like a cut.
TEST(RecordingDamage, IsSeenInEachByte)
{
    const Bytes whole = smallFile();
    const std::uint64_t end = read(whole)._state._end;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        Bytes damaged = whole;
        damaged[at] ^= std::byte{0x20};
        const Found found = read(damaged);
        const bool mayBeCut = (at >= end && at < end + frameSize) || at >= whole.size() - magic.size();
        EXPECT_TRUE(isDamaged(found) || (mayBeCut && found._state._verdict == Verdict::Cut)) << "byte " << at;
        EXPECT_FALSE(found._state._problem.empty()) << "byte " << at;
    }
}

TEST(RecordingDamage, CostsOnlyTheChunkThatItIsIn)
{
    Bytes damaged = smallFile();
    const std::string_view text = asText(damaged);
    const std::size_t second = text.find(asText(ByteView(payload(5, 5)).first(8)));
    ASSERT_NE(second, std::string_view::npos);
    damaged[second - 100] ^= std::byte{1}; // in the chunk's head, so its length may be wrong, too
    const Found found = read(damaged);
    EXPECT_EQ(found._state._verdict, Verdict::Damaged);
    EXPECT_EQ(found._messages, 8U);
    EXPECT_GT(found._state._lost, 0U);
}

// Four chunks, of which two were confirmed before the others were begun.
TEST(RecordingDamage, IsToldFromACutByWhatTheLastCheckpointSays)
{
    Disk::Log log;
    GrowingFile file(std::make_unique<Disk::Logged>(log));
    EXPECT_FALSE(file.begin("test"));
    for (std::uint64_t number = 0; number < 16; number += 4) {
        ChunkBuilder next = chunk(number, 4, 30);
        EXPECT_FALSE(file.add(next));
        EXPECT_FALSE(number == 4 && file.confirm());
    }
    const auto damagedAt = [&](std::uint64_t number, Op checkpoint) {
        Bytes bytes = Disk::after(log, log.size());
        bytes[asText(bytes).find(asText(ByteView(payload(number, 8)).first(8)))] ^= std::byte{1};
        const std::string_view length{"\x14\0\0\0\0\0\0\0", 8};
        for (std::size_t at = 0; (at = asText(bytes).find(length, at + 1)) != std::string_view::npos;)
            bytes[at - 1] = bytes[at - 1] == static_cast<std::byte>(Op::Checkpoint) ? static_cast<std::byte>(checkpoint)
                                                                                    : bytes[at - 1];
        return read(bytes)._state._verdict;
    };
    EXPECT_EQ(damagedAt(5, Op::Checkpoint), Verdict::Damaged);
    EXPECT_EQ(damagedAt(9, Op::Checkpoint), Verdict::Cut);
    EXPECT_EQ(damagedAt(9, Op{0x81}), Verdict::Damaged); // without them, what follows tells
    EXPECT_EQ(damagedAt(13, Op{0x81}), Verdict::Cut);
}

TEST(RecordingDamage, AnyBeginningOfAFileIsACut)
{
    const Bytes whole = smallFile();
    for (std::size_t size = 0; size < whole.size(); ++size) {
        const Found found = read(ByteView(whole).first(size));
        EXPECT_EQ(found._state._verdict, Verdict::Cut) << size;
        EXPECT_TRUE(found._good);
    }
}

TEST(RecordingFinish, RefusesWhatItCannotMendAndChangesNothing)
{
    const RecordingFolder folder;
    const std::string path = folder.file("a.mcap");
    Bytes damaged = smallFile();
    damaged[300] ^= std::byte{1};
    for (const std::string_view bytes : {asText(damaged), std::string_view("no recording"), std::string_view()}) {
        std::ofstream(path, std::ios::binary) << bytes;
        EXPECT_THROW(finishFile(path, [](std::uint64_t, std::uint64_t) { return true; }), std::runtime_error);
        EXPECT_EQ(std::filesystem::file_size(path), bytes.size());
    }
    std::filesystem::remove(path);
    const auto writer = OutputFile::create(path);
    EXPECT_THROW(finishFile(path, [](std::uint64_t, std::uint64_t) { return true; }), std::runtime_error);
    EXPECT_TRUE(InputFile::open(path)->isBeingWritten());
}
} // namespace
