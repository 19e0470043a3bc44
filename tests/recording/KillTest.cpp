#include "monitor/mcap/Finish.h"
#include "tests/recording/RecordingFolder.h"
#include "tests/recording/Story.h"
#include "tests/support/Pace.h"

#include <atomic>
#include <csignal>
#include <gtest/gtest.h>
#include <random>
#include <sched.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Story;

/// What the writing process tells the one that kills it.
struct Shared {
    std::atomic<std::uint64_t> _added{0};  // messages, to the end of a write
    std::atomic<std::uint64_t> _writes{0}; // begun
};

/// Tells of each write that begins.
class Telling final : public OutputFile {
public:
    Telling(std::unique_ptr<OutputFile> file, Shared& shared) : _file(std::move(file)), _shared(shared) {}
    std::error_code write(std::uint64_t offset, ByteView bytes) override
    {
        ++_shared._writes;
        return _file->write(offset, bytes);
    }
    std::error_code setSize(std::uint64_t size) override { return _file->setSize(size); }
    std::future<std::error_code> sync() override { return _file->sync(); }
    std::uint64_t room() const override { return _file->room(); }

private:
    const std::unique_ptr<OutputFile> _file;
    Shared& _shared;
};

[[noreturn]] void writeForEver(const std::string& path, Shared& shared, std::uint64_t count, std::size_t size)
{
    GrowingFile file(std::make_unique<Telling>(OutputFile::create(path), shared));
    if (file.begin("test"))
        _exit(1);
    for (std::uint64_t number = 0;; number += count) {
        ChunkBuilder next = chunk(number, count, size);
        if (file.add(next))
            _exit(1);
        shared._added = number + count;
    }
}

/// A process that records until it is killed in, or right after the beginning of, its write number `writes`.
class Killed {
public:
    Killed(const std::string& path, std::uint64_t count, std::size_t size, std::uint64_t writes, std::uint64_t spins)
        : _shared(*new (mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0))
                      Shared)
    {
        const pid_t writer = fork();
        if (writer == 0)
            writeForEver(path, _shared, count, size);
        while (_shared._writes < writes && waitpid(writer, nullptr, WNOHANG) == 0)
            sched_yield();
        for (std::uint64_t spin = 0; spin < spins; ++spin)
            std::atomic_signal_fence(std::memory_order_seq_cst);
        kill(writer, SIGKILL);
        waitpid(writer, nullptr, 0);
    }
    ~Killed() { munmap(&_shared, sizeof(Shared)); }
    Killed(const Killed&) = delete;
    Killed& operator=(const Killed&) = delete;

    std::uint64_t added() const { return _shared._added; }

private:
    Shared& _shared;
};

struct Kills {
    const char* _name;
    std::uint64_t _count; // messages a chunk
    std::size_t _size;
};
class RecordingKill : public testing::TestWithParam<Kills> {};

// For who wants to open the files with other programs: named by what is in them.
void keepFile(const std::string& path, unsigned seed, const Found& found)
{
    if (const char* const folder = std::getenv("OSTREL_KEPT_FILES"))
        std::filesystem::copy(path, std::string(folder) + "/" + std::to_string(seed) + "." +
                                        std::to_string(found._messages) +
                                        (found._state._indexed ? ".indexed" : ".torn"));
}

TEST_P(RecordingKill, LosesNothingThatWasWrittenAndCanBeFinished)
{
    const RecordingFolder folder;
    const auto kills = static_cast<unsigned>(fromEnvironment("OSTREL_KILLS", 8));
    unsigned torn = 0;
    for (unsigned seed = 0; seed < kills; ++seed) {
        std::mt19937 random(seed);
        const std::string path = folder.file("killed.mcap");
        const Killed killed(path, GetParam()._count, GetParam()._size, 2 + random() % 6, random() % 3'000'000);
        const Found found = read(*InputFile::open(path));
        ASSERT_FALSE(isDamaged(found)) << found._state._problem;
        // The system writes what it was given, also for a program that is gone.
        ASSERT_GE(found._messages, killed.added());
        ASSERT_LE(found._messages, killed.added() + GetParam()._count);
        torn += found._state._indexed ? 0 : 1;
        keepFile(path, seed, found);

        finishFile(path, [](std::uint64_t, std::uint64_t) { return true; });
        const Found finished = read(*InputFile::open(path));
        ASSERT_TRUE(finished._state._problem.empty() && finished._state._indexed) << finished._state._problem;
        ASSERT_EQ(finished._messages, found._messages);
        std::filesystem::remove(path);
    }
    std::printf("%u of %u had no whole end\n", torn, kills);
}
INSTANTIATE_TEST_SUITE_P(Writes, RecordingKill, testing::Values(Kills{"Small", 20, 200}, Kills{"Large", 80, 100'000}),
                         [](const auto& row) { return std::string(row.param._name); });
} // namespace
