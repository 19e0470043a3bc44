#include "scene/file/SceneReader.h"
#include "scene/run/Session.h"
#include "tests/support/Pace.h"

#include <algorithm>
#include <filesystem>
#include <gtest/gtest.h>

using namespace Scenes;

namespace {

constexpr char scene[] =
    "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
    "nodes = [[\"Generator\", \"rate=1000\"], [\"Scale\", \"gain=2\"], [\"Guard\", \"\"],\n"
    "         [\"OSC\", \"listen=127.0.0.1:0 in='/a Long' send=127.0.0.1:9 out='/b Float'\"]]\n"
    "routes = [[\"Generator/value\", \"Scale/in\"], [\"Scale/out\", \"Guard/in\"], [\"Guard/out\", \"L\"],\n"
    "          [\"O\", \"OSC/b\"]]\n"
    "[[sensor]]\nname = \"s\"\ntype = \"SFFloat\"\nlabel = \"L\"\nbuffer = 16\n"
    "[[sensor]]\nname = \"o\"\ntype = \"SFFloat\"\nlabel = \"O\"\noutput = true\n"
    "[[link]]\nfrom = \"s.value\"\nto = \"o.value\"\n";

class Changes final : public ChangeListener {
public:
    void changed(const SensorWatch&, double) override { ++_count; }
    int _count = 0;
};

void runOnce()
{
    Session session;
    std::vector<SceneFile> files;
    files.push_back(parseScene(scene, "scene"));
    std::vector<std::string> said;
    session.build(std::move(files), [&said](const std::string& line) { said.push_back(line); });
    ASSERT_TRUE(said.empty()) << said.front();
    Changes changes;
    session.watches().front()->setListener(&changes);
    for (double now = 1; changes._count < 5; now += 1)
        session.frame(now);
    session.watches().front()->setListener(nullptr);
}

std::ptrdiff_t entriesOf(const char* folder)
{
    return std::ranges::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
}
} // namespace

// OSTREL_ROUNDS: how often.
TEST(Rounds, AHostThatStartsAndStopsLeavesNoThreadAndNoDescriptor)
{
    runOnce(); // what stays open for good is open then
    const std::ptrdiff_t threads = entriesOf("/proc/self/task"), files = entriesOf("/proc/self/fd");
    const long rounds = fromEnvironment("OSTREL_ROUNDS", 30);
    for (long round = 1; round <= rounds && !HasFatalFailure(); ++round)
        runOnce();
    EXPECT_EQ(entriesOf("/proc/self/task"), threads);
    EXPECT_EQ(entriesOf("/proc/self/fd"), files);
}
