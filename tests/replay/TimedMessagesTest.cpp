#include "monitor/mcap/write/GrowingFile.h"
#include "monitor/replay/ReadAhead.h"
#include "tests/recording/LoggedDisk.h"

#include <gtest/gtest.h>

using namespace Monitor;
using namespace Monitor::Mcap;

namespace {

/// A file with one chunk for each list of times, whose messages are numbered through in channel 1; channel 2 has one
/// message at the beginning of each.
Bytes fileOf(const std::vector<std::vector<std::uint64_t>>& chunks)
{
    Disk::Log log;
    GrowingFile file(std::make_unique<Disk::Logged>(log));
    file.begin("test");
    std::uint32_t number = 0;
    for (const auto& times : chunks) {
        ChunkBuilder chunk;
        if (number == 0)
            for (std::uint16_t id = 1; id <= 2; ++id)
                chunk.add(Channel{id, 0, "slot" + std::to_string(id), "json", {}});
        chunk.add(Message{2, 0, times.front(), 0, {}});
        for (const std::uint64_t time : times)
            chunk.add(Message{1, number++, time, 0, asBytes("text")});
        file.add(chunk);
    }
    file.close();
    return Disk::after(log, log.size());
}

std::vector<std::uint64_t> timesRead(const std::vector<std::vector<std::uint64_t>>& chunks)
{
    const Bytes bytes = fileOf(chunks);
    MemoryInput file(bytes);
    const RecordedFile recorded = readRecordedFile(file, {});
    EXPECT_EQ(recorded._chunks.size(), chunks.size());
    EXPECT_EQ(recorded._outside, 0U);
    ReadAhead messages(file, recorded, {1});
    std::vector<std::uint64_t> times;
    while (const auto message = messages.next())
        times.push_back(message->_logTime);
    return times;
}

TEST(TimedMessages, ComeByTimeHoweverChunksOverlap)
{
    using Times = std::vector<std::uint64_t>;
    const std::vector<std::vector<Times>> files = {
        {{1, 2, 3}, {4, 5}}, {{1, 4, 9}, {2, 3}, {5, 10}}, {{5, 6}, {1, 2}}, {{3, 1, 2}, {2, 2}}, {{7}}};
    for (const auto& chunks : files) {
        Times sorted;
        for (const Times& times : chunks)
            sorted.insert(sorted.end(), times.begin(), times.end());
        std::ranges::sort(sorted);
        EXPECT_EQ(timesRead(chunks), sorted);
    }
}

TEST(TimedMessages, OfAFileThatIsGoneEndWithAProblem)
{
    const Bytes bytes = fileOf({{1}, {2}});
    MemoryInput file(bytes);
    const RecordedFile recorded = readRecordedFile(file, {});
    MemoryInput cut(ByteView(bytes).first(static_cast<std::size_t>(recorded._chunks[1]._offset) + 9));
    TimedMessages messages(cut, recorded._chunks, {1});
    EXPECT_TRUE(messages.next());
    EXPECT_THROW(messages.next(), std::runtime_error);
}
} // namespace
