#include "monitor/Recorder.h"
#include "tests/recording/Story.h"
#include "trovio/InSlot.h"
#include "trovio/OutSlot.h"
#include "trovio/Root.h"
#include "trovio/Values.h"

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

/// A slot with a reader, in the tree.
struct ReadSlot {
    ReadSlot()
    {
        Trovio::Root::init();
        auto space = std::make_unique<Trovio::Namespace>();
        space->addExternalRoute("*", "{NamespaceLabel}/{SlotLabel}");
        space->addOutSlot("out", &_out);
        space->addInSlot("in", &_in);
        space->addRoute("out", "in");
        Trovio::Root::get().addNamespace("scene", std::move(space));
    }
    ~ReadSlot() { Trovio::Root::shutdown(); }
    ReadSlot(const ReadSlot&) = delete;
    ReadSlot& operator=(const ReadSlot&) = delete;

    void push(double number) { _out.push(Trovio::Data<std::string>(std::string(20'000, 'x'), Trovio::Time(number))); }

    Trovio::OutSlot<std::string> _out{"out"};
    Trovio::InSlot<std::string> _in{"in"};
};

// In a process of its own, for the file system is seen by nobody else. Its exit code says what failed.
int recordUntilFull(const char* folder)
{
    if (!mountSmall(folder))
        return notAllowed;
    const std::string path = std::string(folder) + "/full.mcap";
    ReadSlot slot;
    Recorder recorder;
    recorder.start({path});
    double number = 0;
    for (; recorder.status()._problem.empty(); sched_yield())
        slot.push(++number);
    slot.push(++number);
    if (slot._in.pop().getTimeStamp().getSeconds() != number) // the flow goes on
        return 1;
    const std::string problem = recorder.stop()._problem;
    if (problem.find("No space left") == std::string::npos || problem.find("make room") == std::string::npos)
        return 2;
    const FileState state = read(*InputFile::open(path))._state;
    return state._verdict == FileState::Verdict::Whole && state._indexed && state._sealed ? 0 : 3;
}

TEST(RecordingDiskFull, EndsWithTheCauseAndLeavesAWholeFileWhileTheFlowGoesOn)
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
