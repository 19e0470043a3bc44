#include "host/output/QueuedOutput.h"
#include "host/output/RunOutput.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace Host;

namespace {

constexpr auto ages = std::chrono::hours(1);

QueuedOutput::Deadline in(std::chrono::steady_clock::duration time)
{
    return std::chrono::steady_clock::now() + time;
}

std::string gap(std::uint64_t dropped, std::uint64_t inAll)
{
    return "gap " + std::to_string(dropped) + " of " + std::to_string(inAll) + "\n";
}

std::string line(std::size_t number)
{
    return std::to_string(number) + std::string(1000, '.') + "\n";
}

class Pipe {
public:
    Pipe() { EXPECT_EQ(pipe2(_ends.data(), O_CLOEXEC), 0); }
    ~Pipe()
    {
        for (const int end : _ends)
            close(end);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int in() const { return _ends[1]; }
    void closeReader() { close(std::exchange(_ends[0], -1)); }
    void closeWriter() { close(std::exchange(_ends[1], -1)); }
    /// Reads until the text ends with `end`, or to the end.
    std::string read(const std::string& end) const
    {
        std::string text;
        std::array<char, 65536> bytes{};
        for (ssize_t count = 1; count > 0 && (end.empty() || !text.ends_with(end));) {
            count = ::read(_ends[0], bytes.data(), bytes.size());
            text.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        }
        return text;
    }

private:
    std::array<int, 2> _ends{};
};

TEST(QueuedOutput, WhoReadsLateGetsWholeLinesAndIsToldWhatIsMissing)
{
    Pipe pipe;
    QueuedOutput output(pipe.in(), gap);
    std::string expected;
    std::size_t taken = 0;
    for (std::string next = line(0); output.put(next); next = line(++taken))
        expected += next;
    EXPECT_FALSE(output.put("two\nlines\n")) << "small enough, but there would be two gaps";
    EXPECT_EQ(output.dropped(), 3U);
    EXPECT_GE(expected.size() + 2000, QueuedOutput::Capacity);
    EXPECT_EQ(pipe.read(gap(3, 3)), expected + gap(3, 3));
    EXPECT_TRUE(output.put("goes on\n"));
    output.tellTotal();
    EXPECT_EQ(output.finish(in(ages)), "");
    EXPECT_FALSE(output.put("too late\n"));
    pipe.closeWriter();
    EXPECT_EQ(pipe.read(""), "goes on\n" + gap(0, 3));
}

TEST(QueuedOutput, EndsThoughNobodyReads)
{
    Pipe pipe;
    QueuedOutput output(pipe.in(), gap);
    std::string expected;
    for (std::size_t i = 0; i < 1000; ++i)
        EXPECT_TRUE(output.put(line(i))), expected += line(i);
    const std::string left = output.finish(in({}));
    pipe.closeWriter();
    // The thread may be between writing and saying so.
    const std::string read = pipe.read("");
    EXPECT_TRUE(read.empty() || read.ends_with('\n'));
    EXPECT_TRUE(left.ends_with(line(999)));
    EXPECT_GE(read.size() + left.size(), expected.size());
}

TEST(QueuedOutput, TellsAReaderThatWentFromADiskThatIsFull)
{
    Pipe pipe;
    pipe.closeReader();
    const int full = open("/dev/full", O_WRONLY | O_CLOEXEC);
    QueuedOutput toPipe(pipe.in(), gap), toDisk(full, gap);
    for (QueuedOutput* output : {&toPipe, &toDisk}) {
        EXPECT_TRUE(output->put("a\n"));
        EXPECT_EQ(output->finish(in(ages)), "a\n");
    }
    EXPECT_EQ(toPipe.state(), QueuedOutput::State::ReaderGone);
    EXPECT_EQ(toDisk.state(), QueuedOutput::State::Failed);
    EXPECT_EQ(toDisk.error(), ENOSPC);
    close(full);
}

TEST(RunOutputDeathTest, LastWordsGetOutBeforeTheEnd)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            RunOutput output(droppedAsText);
            output.say(std::string(2'000'000, '.'));
            output.say("last words");
            std::abort();
        },
        ::testing::KilledBySignal(SIGABRT), "last words");
}
} // namespace
