#include "tests/host/HostProcess.h"
#include "tests/replay/RecordedStory.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <arpa/inet.h>
#include <atomic>
#include <csignal>
#include <cstring>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <thread>

namespace {

std::string textOf(const std::string& path)
{
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    const auto at = text.find(from);
    EXPECT_NE(at, text.npos) << from;
    return at == text.npos ? text : text.replace(at, from.size(), to);
}

const std::string wandScene = textOf(EXAMPLES_FOLDER "/recorded/wand.toml");

struct Outcome {
    int _code;
    std::string _out, _err;
};

/// Three seconds with the scene of the example, and a folder for what is made of it.
class ReplayProgram : public ::testing::Test {
protected:
    ReplayProgram()
    {
        setenv("TROVIO_NODE_PATH", TEST_MODULES, 1);
        RecordedStory::write(file("wand.mcap"), "Context/Wand", wandScene, 3);
    }

    std::string file(const std::string& name) const
    {
        return (std::filesystem::path(_scene.path()).parent_path() / name).string();
    }
    std::string write(const std::string& name, const std::string& text) const
    {
        std::ofstream(file(name), std::ios::binary) << text;
        return file(name);
    }
    Outcome replay(std::vector<std::string> arguments, const std::string& recording = "wand.mcap") const
    {
        arguments.insert(arguments.begin(), {"replay", file(recording)});
        HostProcess host(HOST_PROGRAM, arguments);
        const int code = host.wait();
        return {code, host.out(), host.err()};
    }

    const SceneOnDisk _scene{wandScene, "scene.toml"};
};

/// Keeps as many threads busy as there are processors.
class BusyMachine {
public:
    BusyMachine()
    {
        for (unsigned i = 0; i < std::max(std::thread::hardware_concurrency(), 2U); ++i)
            _threads.emplace_back([this] {
                while (!_isOver)
                    ++_work;
            });
    }
    ~BusyMachine()
    {
        _isOver = true;
        for (std::thread& thread : _threads)
            thread.join();
    }
    BusyMachine(const BusyMachine&) = delete;
    BusyMachine& operator=(const BusyMachine&) = delete;

private:
    std::atomic<bool> _isOver{false};
    std::atomic<std::uint64_t> _work{0};
    std::vector<std::thread> _threads;
};

// With OSTREL_REPLAYS as often as that, and at the speeds that take their time, too.
TEST_F(ReplayProgram, SaysTheSameEachTime)
{
    const char* const wanted = std::getenv("OSTREL_REPLAYS");
    const int replays = wanted ? std::atoi(wanted) : 4;
    const Outcome first = replay({"--as-test"});
    EXPECT_EQ(first._code, 0) << first._err;
    for (const char* const sensor : {"hand", "both", "grip", "held", "trigger", "beat"})
        EXPECT_TRUE(first._out.find("\"sensor\":\"" + std::string(sensor) + "\"") != first._out.npos) << sensor;
    EXPECT_TRUE(says(first._out, R"("sensor":"held","label":"Held","type":"SFBool","value":false)"));
    for (int i = 1; i < replays; ++i) {
        std::optional<BusyMachine> busy;
        if (i % 2 == 1)
            busy.emplace();
        EXPECT_TRUE(replay({"--as-test"})._out == first._out) << "replay " << i;
    }
    for (const char* const speed : {"10", "1", "0.5"}) {
        if (!wanted && speed != std::string("10"))
            continue;
        const Outcome timed = replay({"--as-test", "--speed", speed});
        EXPECT_TRUE(timed._out == first._out) << "at speed " << speed;
        EXPECT_TRUE(says(timed._err, "99 % of them came within ")) << timed._err;
    }
}

TEST_F(ReplayProgram, ComparesWithAGoldenFileAndShowsTheFirstDifference)
{
    const std::string golden = file("wand.jsonl");
    EXPECT_EQ(replay({"--as-test", "--write-golden", golden})._code, 0);
    EXPECT_EQ(replay({"--as-test", "--golden", golden})._code, 0);

    const Outcome tuned = replay(
        {write("tuned.toml", replaced(wandScene, "gain='-1 1 1'", "gain='-2 1 1'")), "--as-test", "--golden", golden});
    EXPECT_EQ(tuned._code, 1);
    EXPECT_TRUE(saysAll(tuned._err, {"wand.jsonl: frame 1: sensor \"both\": the value is [", ", where line 3 has ["}));

    const std::string text = textOf(golden);
    const struct {
        std::string _golden;
        const char* _said;
    } rows[] = {{text + "more\n", "the replay ends with frame 180, before line "},
                {text.substr(0, text.size() - 1), "frame 180: "},
                {text.substr(0, text.find('\n') + 1), "frame 1: "},
                {"[\n" + text, "where line 1 has ["}};
    for (const auto& [other, said] : rows) {
        const Outcome differs = replay({"--as-test", "--golden", write("other.jsonl", other)});
        EXPECT_EQ(differs._code, 1);
        EXPECT_TRUE(says(differs._err, said));
    }
}

TEST_F(ReplayProgram, PartsOfARecordingBeginWithWhatWasThereBefore)
{
    const Outcome part = replay({"--as-test", "--from", "1.3", "--to", "1.35"});
    EXPECT_EQ(part._code, 0) << part._err;
    EXPECT_TRUE(says(part._out, "\"sensor\":\"grip\"")) << "it came before";
    EXPECT_EQ(part._out.find("\"time\":1700000001.2"), part._out.npos);
    EXPECT_EQ(part._out.find("\"time\":1700000001.4"), part._out.npos);
}

TEST_F(ReplayProgram, RefusesInATestByNameWhatHasThreadsOfItsOwn)
{
    const Outcome refused = replay(
        {write("own.toml", replaced(wandScene, "[\"Generator\"", "[\"OwnThread\"], [\"Generator\"")), "--as-test"});
    EXPECT_EQ(refused._code, 2);
    EXPECT_TRUE(says(refused._err, "node 'Context/OwnThread' (OwnThread) has threads of its own"));
    EXPECT_EQ(refused._out, "");
}

TEST_F(ReplayProgram, RefusesWhatDoesNotGoTogetherAndWhatIsNoRecording)
{
    EXPECT_EQ(replay({"--golden", "x"})._code, 2);
    EXPECT_EQ(replay({"--as-test", "--loop"})._code, 2);
    EXPECT_EQ(replay({"--as-test", "--quiet"})._code, 2);
    EXPECT_EQ(replay({"--speed", "fast"})._code, 2);
    EXPECT_EQ(replay({"--from", "9"})._code, 1);
    EXPECT_TRUE(says(replay({"--as-test", "--golden", file("none")})._err, "--write-golden makes it"));
    EXPECT_TRUE(says(replay({}, "scene.toml")._err, "is no recording"));
    RecordedStory::write(file("bare.mcap"), "Context/Wand", "rate = 1", 1);
    EXPECT_EQ(replay({}, "bare.mcap")._code, 2) << "its scene is none";
}

/// A socket that counts what is sent to it.
class Machine {
public:
    Machine() : _socket(socket(AF_INET, SOCK_DGRAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0))
    {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(_socket, reinterpret_cast<sockaddr*>(&address), size);
        getsockname(_socket, reinterpret_cast<sockaddr*>(&address), &size);
        _port = std::to_string(ntohs(address.sin_port));
    }
    ~Machine() { close(_socket); }
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    bool wasMoved() const
    {
        char byte = 0;
        return recv(_socket, &byte, 1, 0) >= 0;
    }
    std::string _port;

private:
    const int _socket;
};

TEST_F(ReplayProgram, MovesNoMachineUnlessItIsToldTo)
{
    const Machine machine;
    const std::string scene =
        write("machine.toml", replaced(replaced(wandScene, "[\"Generator\"",
                                                "[\"OSC\", \"label=Machine send=127.0.0.1:" + machine._port +
                                                    " out='/rumble Float'\"], [\"Generator\""),
                                       "[\"Rumble\", \"Wand/rumble\"]", "[\"Rumble\", \"Machine/rumble\"]"));
    const Outcome quiet = replay({scene, "--speed", "max", "--format", "json"});
    EXPECT_EQ(quiet._code, 0);
    EXPECT_TRUE(saysAll(quiet._err, {"node 'Context/Machine' (OSC) takes values and is left out",
                                     "node 'Context/Wand' (Player): running, plays what was recorded of OSC"}));
    EXPECT_TRUE(says(quiet._out, "\"sensor\":\"hand\""));
    replay({scene, "--as-test"});
    EXPECT_FALSE(machine.wasMoved());
    EXPECT_EQ(replay({scene, "--speed", "max", "--send", "--quiet"})._code, 0);
    EXPECT_TRUE(machine.wasMoved());
}

TEST_F(ReplayProgram, OpensNothingInATest)
{
    const Machine taken;
    const std::string scene = write("ears.toml", replaced(wandScene, "[\"Generator\"",
                                                          "[\"OSC\", \"label=Ear listen=127.0.0.1:" + taken._port +
                                                              " in='/ear Float'\"], [\"Generator\""));
    const std::string isTaken = "the port is taken by another program";
    EXPECT_TRUE(says(replay({scene, "--speed", "max", "--quiet"})._err, isTaken));
    const Outcome test = replay({scene, "--as-test"});
    EXPECT_EQ(test._code, 0);
    EXPECT_TRUE(says(test._err, "node 'Context/Ear' (OSC) was not recorded and is left out"));
    EXPECT_EQ(test._err.find(isTaken), std::string::npos) << test._err;
}

TEST_F(ReplayProgram, ObeysItsKeys)
{
    const winsize size{24, 100, 0, 0};
    HostProcess host("sh", {"-c", "TERM=xterm exec \"$0\" replay \"$1\" --paused", HOST_PROGRAM, file("wand.mcap")},
                     &size);
    const std::pair<const char*, const char*> rows[] = {{"", "paused at 0.000 s of "},
                                                        {"\x1b[A", "paused at 0.000 s of 2.993 s, speed 2"},
                                                        {"\x1b[C", "paused at 0.010 s of "},
                                                        {"/h\r", "filter 'h'"},
                                                        {" ", "frames: 180 run"}};
    for (const auto& [keys, shown] : rows) {
        EXPECT_GE(::write(host.terminal(), keys, std::strlen(keys)), 0);
        EXPECT_TRUE(host.waitFor(shown)) << shown;
    }
    EXPECT_EQ(host.wait(), 0);
}

TEST_F(ReplayProgram, BeginsAgainAsIfTimeWentOn)
{
    HostProcess host(HOST_PROGRAM, {"replay", file("wand.mcap"), "--loop", "--speed", "max", "--format", "lines"});
    EXPECT_TRUE(host.waitFor("     7.0"));
    host.signal(SIGINT);
    EXPECT_EQ(host.wait(), 0);
    EXPECT_TRUE(says(host.err(), "in-slot: "));
    EXPECT_EQ(host.err().find("stamped before the one before"), std::string::npos) << host.err();
}

TEST_F(ReplayProgram, ExampleSaysWhatItsGoldenFileSays)
{
    const std::string folder = EXAMPLES_FOLDER "/recorded/";
    HostProcess host(HOST_PROGRAM, {"replay", folder + "wand.mcap", "--as-test", "--golden", folder + "wand.jsonl"});
    EXPECT_EQ(host.wait(), 0) << host.err();
    EXPECT_LT(std::filesystem::file_size(folder + "wand.mcap") + std::filesystem::file_size(folder + "wand.jsonl"),
              200'000U);
}
} // namespace
