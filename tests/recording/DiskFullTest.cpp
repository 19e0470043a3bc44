#include "monitor/mcap/write/Recording.h"
#include "tests/recording/Story.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace Story;

constexpr int notAllowed = 77;

bool mountSmall(const char* folder)
{
    return unshare(getuid() == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) == 0 &&
           mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
           mount("tmpfs", folder, "tmpfs", 0, "size=3m") == 0;
}

// In a process of its own, for the file system is seen by nobody else. Its exit code says what failed.
int recordUntilFull(const char* folder)
{
    if (!mountSmall(folder))
        return notAllowed;
    const std::string path = std::string(folder) + "/full.mcap";
    Recording recording(path, OutputFile::create(path), "test", {500'000, 4'000'000});
    std::uint16_t channel[channels];
    for (auto& id : channel)
        id = recording.addChannel("slot", "cdr", {});
    for (std::uint64_t number = 0; number < 1000; ++number) {
        recording.waitForRoom();
        recording.add(channel[number % channels], timeOf(number), timeOf(number), payload(number, 20'000));
    }
    const std::string problem = recording.finish();
    if (problem.find("No space left") == std::string::npos || problem.find("make room") == std::string::npos)
        return 2;
    const Found found = read(*InputFile::open(path));
    if (isDamaged(found) || !found._state._indexed || !found._state._sealed)
        return 3;
    return found._messages > 50 && found._messages == recording.status()._messages ? 0 : 4;
}

TEST(RecordingDiskFull, EndsWithTheCauseAndLeavesAWholeFile)
{
    char folder[] = "recording-full-XXXXXX";
    ASSERT_NE(mkdtemp(folder), nullptr);
    const pid_t process = fork();
    if (process == 0)
        _exit(recordUntilFull(folder));
    int status = 0;
    waitpid(process, &status, 0);
    rmdir(folder);
    if (WEXITSTATUS(status) == notAllowed)
        GTEST_SKIP() << "no file system may be mounted here";
    EXPECT_EQ(status, 0);
}
} // namespace
