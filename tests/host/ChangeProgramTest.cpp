#include "tests/host/HostProcess.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <unistd.h>

namespace {

namespace Files = std::filesystem;
const std::string host = HOST_PROGRAM;

std::string sceneWith(const std::string& gain)
{
    return "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
           "nodes = [[\"Generator\", \"rate=200\"], [\"Scale\", \"gain=" +
           gain +
           "\"]]\nroutes = [[\"Generator/value\", \"Scale/in\"], [\"Scale/out\", \"Wave\"]]\n"
           "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n";
}

std::string planFrom(const std::string& before, const std::string& after)
{
    return "node 'Scale' starts anew: settings 'gain=" + before + "' -> 'gain=" + after + "'\n";
}

std::size_t timesIn(const std::string& text, const std::string& part)
{
    std::size_t times = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1))
        ++times;
    return times;
}
} // namespace

// Without a terminal of its own, which the child of a test has not.
TEST(ChangeProgram, FollowsSavesTheVerbAndHangUpAndRefusesBadFiles)
{
    const SceneOnDisk scene(sceneWith("1"));
    setenv("XDG_RUNTIME_DIR", Files::path(scene.path()).parent_path().c_str(), 1);
    const std::string draft = scene.path() + "~";
    const auto save = [&](const std::string& text) { // as editors do
        std::ofstream(draft) << text;
        Files::rename(draft, scene.path());
    };
    HostProcess running("setsid", {host, "run", scene.path(), "--watch", "--format", "lines"});
    ASSERT_TRUE(running.waitFor("wave SFFloat")) << running.err();
    save(sceneWith("2"));
    ASSERT_TRUE(running.waitFor(planFrom("1", "2"))) << running.err();

    save("[[handler]\n");
    ASSERT_TRUE(running.waitFor("nothing was changed; the run goes on as before")) << running.err();
    EXPECT_EQ(timesIn(running.err(), scene.path() + ":1:"), 1U) << running.err();
    HostProcess refused(host, {"reload"});
    EXPECT_EQ(refused.wait(), 2);
    EXPECT_NE(refused.err().find(scene.path() + ":1:"), std::string::npos) << refused.err();

    save(sceneWith("2"));
    ASSERT_TRUE(running.waitFor("nothing differs from what runs")) << running.err();
    HostProcess same(host, {"reload"});
    EXPECT_EQ(same.wait(), 0);
    EXPECT_EQ(same.out(), "nothing differs from what runs\n");

    running.signal(SIGHUP);
    ASSERT_TRUE(running.waitFor("nothing differs from what runs\nthe scenes were read anew")) << running.err();
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0);
    unsetenv("XDG_RUNTIME_DIR");
}
