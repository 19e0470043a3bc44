#include "tests/host/HostProcess.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace {

namespace Files = std::filesystem;
const std::string host = HOST_PROGRAM;

/// A wave of 100 records a second.
class RecordingProgram : public ::testing::Test {
protected:
    RecordingProgram() { setenv("XDG_RUNTIME_DIR", folder().c_str(), 1); }
    ~RecordingProgram() override { unsetenv("XDG_RUNTIME_DIR"); }

    std::string folder() const { return Files::path(_scene.path()).parent_path(); }
    std::string file(const std::string& name) const { return folder() + "/" + name; }

    std::string ask(const std::vector<std::string>& arguments, int code = 0) const
    {
        HostProcess asking(host, arguments);
        EXPECT_EQ(asking.wait(), code) << arguments.front() << ' ' << asking.out() << asking.err();
        return asking.out() + asking.err();
    }
    nlohmann::json info(const std::string& name) const
    {
        return nlohmann::json::parse(ask({"recording", "info", file(name), "--format", "json"}));
    }
    void record(const std::string& name) const
    {
        ask({"run", _scene.path(), "--quiet", "--frames", "20", "--rate", "100", "--record", file(name)});
    }

    const SceneOnDisk _scene{"[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
                             "nodes = [[\"Generator\", \"rate=100\"]]\n"
                             "routes = [[\"Generator/value\", \"Wave\"]]\n"
                             "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n"};
};

// The value of a name in a list of objects.
nlohmann::json slotOf(const nlohmann::json& info, const std::string& label)
{
    for (const auto& slot : info["slots"])
        if (slot["label"] == label)
            return slot;
    return {};
}

TEST_F(RecordingProgram, RunRecordsFramesRecordsAndItsScene)
{
    record("a.mcap");
    const nlohmann::json found = info("a.mcap");
    EXPECT_EQ(found["state"], "whole");
    EXPECT_EQ(slotOf(found, "@frames")["messages"], 20) << found;
    EXPECT_GT(slotOf(found, "Context/Generator/value")["messages"], 5) << found;
    EXPECT_EQ(found["attached"][0]["name"], "scene.toml");
    EXPECT_EQ(found["attached"][0]["bytes"], Files::file_size(_scene.path()));
    const std::string text = ask({"recording", "info", file("a.mcap")});
    for (const std::string& line :
         {file("a.mcap") + ": whole\n", std::string("        20 messages "), std::string("@frames  ostrel.Frame\n"),
          "attached: scene.toml, application/toml, " + std::to_string(Files::file_size(_scene.path())) + " bytes\n"})
        EXPECT_NE(text.find(line), std::string::npos) << line << text;
    EXPECT_NE(ask({"run", _scene.path(), "--record", file("a.mcap")}, 2).find("exists"), std::string::npos);
}

TEST_F(RecordingProgram, CutFileIsReadAndFinishedAndADamagedOneIsNot)
{
    record("a.mcap");
    Files::resize_file(file("a.mcap"), Files::file_size(file("a.mcap")) - 10);
    EXPECT_NE(ask({"recording", "check", file("a.mcap")}).find("cut off"), std::string::npos);
    const nlohmann::json cut = info("a.mcap");
    ask({"recording", "finish", file("a.mcap")});
    const nlohmann::json mended = info("a.mcap");
    EXPECT_EQ(mended["state"], "whole");
    EXPECT_EQ(mended["messages"], cut["messages"]);
    {
        std::fstream bytes(file("a.mcap"), std::ios::in | std::ios::out | std::ios::binary);
        bytes.seekp(600);
        bytes << "damage";
    }
    EXPECT_NE(ask({"recording", "check", file("a.mcap")}, 1).find("damaged"), std::string::npos);
    ask({"recording", "finish", file("a.mcap")}, 1);
}

TEST_F(RecordingProgram, ExportKeepsEveryRecordInEachForm)
{
    record("a.mcap");
    const std::string label = "Context/Generator/value";
    const auto count = slotOf(info("a.mcap"), label)["messages"].get<std::ptrdiff_t>();
    const std::string csv = ask({"recording", "export", file("a.mcap"), "--format", "csv", "--slots", label});
    EXPECT_EQ(std::ranges::count(csv, '\n'), count + 1) << csv;
    const std::string lines = ask({"recording", "export", file("a.mcap"), "--slots", label});
    EXPECT_EQ(std::ranges::count(lines, '\n'), count);
    EXPECT_EQ(nlohmann::json::parse(lines.substr(0, lines.find('\n')))["label"], label);
    ask({"recording", "export", file("a.mcap"), "--format", "mcap", "--zstd", "--output", file("b.mcap")});
    EXPECT_EQ(info("b.mcap")["slots"], info("a.mcap")["slots"]);
    EXPECT_LT(Files::file_size(file("b.mcap")), Files::file_size(file("a.mcap")));
    for (const auto& [arguments, says, code] :
         {std::tuple<std::vector<std::string>, const char*, int>{{"--format", "mcap"}, "needs --output", 2},
          {{"--zstd"}, "only --format mcap", 2},
          {{"--output", file("b.mcap")}, "File exists", 1},
          {{"--slots", "nothing/*"}, "no slot of the recording fits", 3}}) {
        std::vector<std::string> all{"recording", "export", file("a.mcap")};
        all.insert(all.end(), arguments.begin(), arguments.end());
        EXPECT_NE(ask(all, code).find(says), std::string::npos) << says;
    }
}

TEST_F(RecordingProgram, RunningHostRecordsWhenItIsAskedToWithTheSceneThatItRunsNow)
{
    HostProcess running(host, {"run", _scene.path(), "--format", "lines"});
    ASSERT_TRUE(running.waitFor("wave"));
    EXPECT_NE(ask({"record", "--stop"}, 1).find("nothing is being recorded"), std::string::npos);
    EXPECT_NE(ask({"record", "a.bin"}, 2).find(".mcap"), std::string::npos);
    std::ofstream(_scene.path(), std::ios::app) << "description = \"of a reload\"\n";
    const auto size = Files::file_size(_scene.path());
    ask({"reload"});
    std::ofstream(_scene.path()) << "not read any more";
    HostProcess recording(host, {"record", file("a.mcap"), "--slots", "*/value"});
    ASSERT_TRUE(running.waitFor("recording to"));
    EXPECT_NE(ask({"record", file("b.mcap")}, 1).find("made already"), std::string::npos);
    EXPECT_NE(ask({"record"}).find("slots 1, "), std::string::npos);
    recording.signal(SIGINT);
    EXPECT_EQ(recording.wait(), 0) << recording.err();
    EXPECT_NE(recording.out().find("recorded to"), std::string::npos);
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0);
    EXPECT_EQ(info("a.mcap")["attached"][0]["name"], "scene.toml");
    EXPECT_EQ(info("a.mcap")["attached"][0]["bytes"], size);
}

TEST_F(RecordingProgram, KilledRunLeavesARecording)
{
    HostProcess running(host, {"run", _scene.path(), "--format", "lines", "--record", file("a.mcap")});
    ASSERT_TRUE(running.waitFor("wave"));
    while (Files::file_size(file("a.mcap")) < 4096)
        ask({"record"});
    EXPECT_EQ(info("a.mcap")["beingWritten"], true);
    running.signal(SIGKILL);
    running.wait();
    ask({"recording", "check", file("a.mcap")});
    EXPECT_GT(info("a.mcap")["messages"], 20);
}
} // namespace
