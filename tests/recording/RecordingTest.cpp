#include "monitor/mcap/write/Recording.h"
#include "tests/recording/LoggedDisk.h"
#include "tests/recording/Story.h"

#include <gtest/gtest.h>
#include <latch>

namespace {

using namespace Story;

/// A disk whose first sync takes until somebody opens the gate.
class Gated final : public OutputFile {
public:
    Gated(Disk::Log& log, std::latch& gate) : _file(log), _gate(gate) {}
    std::error_code write(std::uint64_t offset, ByteView bytes) override { return _file.write(offset, bytes); }
    std::error_code setSize(std::uint64_t size) override { return _file.setSize(size); }
    std::future<std::error_code> sync() override
    {
        return std::async(std::launch::deferred, [this, done = _file.sync()]() mutable {
            _gate.wait();
            return done.get();
        });
    }
    std::uint64_t room() const override { return 1000; }

private:
    Disk::Logged _file;
    std::latch& _gate;
};

void addStory(Recording& recording, std::uint64_t messages, std::uint64_t first = 0)
{
    for (int i = 1; i <= channels && first == 0; ++i)
        recording.addChannel("slot/" + std::to_string(i), "cdr",
                             Schema{0, "std_msgs/msg/Int64", "ros2msg", "int64 data\n"});
    for (std::uint64_t number = first; number < first + messages; ++number)
        recording.add(static_cast<std::uint16_t>(1 + number % channels), timeOf(number), timeOf(number),
                      payload(number, first > 0 && number % 50 == 49 ? 70'000 : 100));
}

TEST(Recording, NeverWaitsForTheDiskAndTellsWhenTooMuchWaits)
{
    Disk::Log log;
    std::latch gate(1);
    Recording recording("a.mcap", std::make_unique<Gated>(log, gate), "test", {1000, 5000});
    EXPECT_TRUE(recording.hasRoom());
    addStory(recording, 100);
    EXPECT_FALSE(recording.hasRoom());
    EXPECT_EQ(recording.status()._messages, 0U);
    gate.count_down();
    recording.waitForRoom();
    EXPECT_TRUE(recording.hasRoom());
    while (recording.status()._waiting > 0)
        std::this_thread::yield();
    addStory(recording, 100, 100); // into the memory of what is written
    EXPECT_EQ(recording.finish(), "");
    const Found found = read(Disk::after(log, log.size()));
    EXPECT_TRUE(found._good && found._state._sealed) << found._state._problem;
    EXPECT_EQ(found._messages, 200U);
    EXPECT_EQ(recording.status()._messages, 200U);
}

TEST(Recording, WaitsForTheDiskOnceForSeveralChunksWhereThatIsBehind)
{
    Disk::Log log;
    std::latch gate(1);
    Recording recording("a.mcap", std::make_unique<Gated>(log, gate), "test", {1000, 5000});
    addStory(recording, 200);
    gate.count_down();
    EXPECT_EQ(recording.finish(), "");
    const auto isSync = [](const Disk::Operation& done) { return done._kind == Disk::Operation::Kind::Sync; };
    EXPECT_LE(std::ranges::count_if(log, isSync), 10); // for 28 chunks of 1000 bytes, beginning and end
    const Found found = read(Disk::after(log, log.size()));
    EXPECT_TRUE(found._good && found._state._indexed) << found._state._problem;
    EXPECT_EQ(found._messages, 200U);
}

TEST(Recording, ThatWasEndedByTheDiskSaysWhyAndTakesWhatComesWithoutKeepingIt)
{
    Disk::Log log;
    Recording recording("a.mcap", std::make_unique<Disk::Logged>(log, 5), "test", {1000, 5000});
    addStory(recording, 1000);
    const std::string problem = recording.finish();
    EXPECT_EQ(problem.find("recording 'a.mcap' ended: No space left on device"), 0U) << problem;
    EXPECT_EQ(recording.status()._waiting, 0U);
    EXPECT_EQ(read(Disk::after(log, log.size()))._messages, recording.status()._messages);
}
} // namespace
