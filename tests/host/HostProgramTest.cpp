#include "base/Sanitizers.h"
#include "tests/host/HostProcess.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <algorithm>
#include <csignal>
#include <gtest/gtest.h>

namespace {

const std::string host = HOST_PROGRAM;

/// The number behind `text` in what the program said; -1 if there is none.
long numberBehind(const std::string& said, const std::string& text)
{
    const std::size_t at = said.find(text);
    return at == std::string::npos ? -1 : std::atol(said.c_str() + at + text.size());
}

// Records go fast, through a filter and to another handler; still what one end has given, the other has got. Sources
// come last, so that all is connected when they start.
TEST(HostProgram, EndsWithNumbersThatFitTogether)
{
    const std::string source = "[\"Generator\", \"rate=50000\"]";
    std::string others; // so that it takes a while to say the numbers
    for (int i = 0; i < 190; ++i)
        others += "[[sensor]]\nname = \"s" + std::to_string(i) + "\"\ntype = \"SFBool\"\n";
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"a\"\nnodes = [[\"Scale\"], " + source +
                            "]\n"
                            "routes = [[\"Generator/value\", \"Scale/in\"], [\"Scale/out\", \"Wave\"]]\n"
                            "[[handler]]\nkind = \"Trovio\"\nname = \"b\"\nnodes = [" +
                            source + "]\n" + others +
                            "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n"
                            "[[sensor]]\nname = \"far\"\ntype = \"SFFloat\"\nlabel = \"Far\"\nbuffer = 9\n"
                            "[[route]]\nfrom = \"Context2/Generator/value\"\nto = \"Context/Far\"\n");
    HostProcess running(host, {"run", scene.path(), "--format", "json", "--frames", "20"});
    ASSERT_EQ(running.wait(), 0) << running.err();
    const std::string counts = running.out().substr(running.out().find("{\"counts\":"));
    const auto count = [&counts](const std::string& place, const std::string& what) {
        return numberBehind(counts.substr(counts.find("\":\"" + place + "\"")), "\"" + what + "\":");
    };
    const struct {
        long _given, _got;
    } pairs[] = {{count("Context/Generator/value", "written"), count("Context/Generator", "records")},
                 {count("Context/Generator/value", "written"), count("Context/Scale/in", "stored")},
                 {count("Context/Scale/in", "taken"), count("Context/Scale", "received")},
                 {count("Context/Scale", "sent"), count("Context/Scale/out", "written")},
                 {count("Context/Scale/out", "written"), count("Context/Wave", "stored")},
                 {count("Context2/Generator/value", "written"), count("Context/Far", "stored")}};
    for (const auto& pair : pairs)
        EXPECT_EQ(pair._given, pair._got) << &pair - pairs << counts;
    EXPECT_GT(pairs[5]._got, 0);
    const std::string wave = running.err().substr(running.err().find("sensor 'wave' (label 'Wave') SFFloat: "));
    EXPECT_EQ(numberBehind(wave, "in-slot: "), pairs[4]._got) << "as text";
}

// Two signals are both pending when it goes on, so neither can come after the end.
TEST(HostProgram, EndsInOrderWithTheFirstSignalAndAtOnceWithTheSecond)
{
    const SceneOnDisk scene("[[sensor]]\nname = \"s\"\ntype = \"SFBool\"\n");
    for (const std::vector<int>& signals : {std::vector<int>{SIGTERM}, {SIGSTOP, SIGINT, SIGTERM, SIGCONT}}) {
        HostProcess running(host, {"run", scene.path()});
        ASSERT_TRUE(running.waitFor("is bound to nothing")) << running.err();
        for (const int number : signals)
            running.signal(number);
        const int code = running.wait();
        EXPECT_TRUE(signals.size() == 1 ? code == 0 : code == 128 + SIGINT || code == 128 + SIGTERM) << code;
        EXPECT_TRUE(signals.size() > 1 || running.err().find("frames: ") != std::string::npos) << running.err();
    }
}

TEST(HostProgram, NamesTheNodeThatHangsAndEndsWithTheSecondSignal)
{
    const struct {
        const char *_verb, *_in, *_runs, *_says;
    } rows[] = {{"run", "stop", "node 'Context/Door'", "node 'Context/Door' has not stopped for "},
                {"run", "start", "hangs in start", "node 'Context/Door' has not started for "},
                {"check", "configure", "hangs in", "node 'Door' has not taken its settings for "},
                {"why", "destructor", "hangs in", "node 'Door' has not been destroyed for "}};
    for (const auto& row : rows) {
        const SceneOnDisk scene(std::string("[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
                                            "nodes = [[\"Hangs\", \"label=Door in=") +
                                row._in + "\"]]\n");
        std::vector<std::string> arguments{"TROVIO_NODE_PATH=" TEST_MODULES, host, row._verb, scene.path()};
        if (row._verb == std::string("why"))
            arguments.insert(arguments.end(), {"Door/out", "Door/in", "--patience", "0.1"});
        HostProcess running("env", arguments);
        ASSERT_TRUE(running.waitFor(row._runs)) << running.err();
        running.signal(SIGTERM);
        EXPECT_TRUE(running.waitFor(row._says)) << running.err();
        running.signal(SIGTERM);
        EXPECT_EQ(running.wait(), 128 + SIGTERM);
        EXPECT_TRUE(says(running.err(), std::string("ended by a second signal: ") + row._says));
    }
}

// Thousands of routes times thousands of sensors take a while. The first handler says when the scene is being built.
TEST(HostProgram, EndsWhileItStarts)
{
    std::string text = "[[handler]]\nkind = \"Trovia\"\nname = \"bad\"\n"
                       "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nroutes = [";
    for (int i = 0; i < 20'000; ++i)
        text += "[\"*\", \"" + std::to_string(i) + "-*\"],\n";
    text += "]\n";
    for (int i = 0; i < 5'000; ++i)
        text += "[[sensor]]\nname = \"s" + std::to_string(i) + "\"\nlabel = \"l" + std::to_string(i) +
                "\"\ntype = \"SFFloat\"\noutput = true\n";
    const SceneOnDisk scene(text);
    HostProcess running(host, {"run", scene.path()});
    ASSERT_TRUE(running.waitFor("could not be made"));
    running.signal(SIGTERM);
    EXPECT_EQ(running.wait(), 0);
    EXPECT_TRUE(says(running.err(), "ended before the scene was built\n"));
}

// What was opened instead of them would get what the program says.
TEST(HostProgram, RunsWithoutStandardStreams)
{
    const SceneOnDisk scene("[[sensor]]\nname = \"s\"\ntype = \"SFBool\"\n");
    for (const char* closed : {"<&- >&- 2>&-", "2>&-"}) {
        HostProcess running("sh",
                            {"-c", "exec \"$0\" run \"$1\" --frames 3 " + std::string(closed), host, scene.path()});
        EXPECT_EQ(running.wait(), 0) << closed;
    }
}

// The values are more than a pipe holds.
TEST(HostProgram, NeverWaitsForWhoReadsAlong)
{
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
                            "nodes = [[\"Generator\", \"type=Float[] elements=2000 rate=60\"]]\n"
                            "routes = [[\"Generator/value\", \"Wave\"]]\n"
                            "[[sensor]]\nname = \"wave\"\ntype = \"MFFloat\"\nlabel = \"Wave\"\n");
    HostProcess running(host, {"run", scene.path(), "--format", "json", "--frames", "30"});
    running.pauseReading(true);
    EXPECT_EQ(running.wait(), 0);
    EXPECT_GT(numberBehind(running.err(), "standard output: "), 0) << running.err();
}

TEST(HostProgram, EndsInOrderWhenItsReaderGoes)
{
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Generator\", \"\"]]\n"
                            "routes = [[\"Generator/value\", \"Wave\"]]\n"
                            "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n");
    HostProcess running(host, {"run", scene.path(), "--format", "json"});
    ASSERT_TRUE(running.waitFor("\"sensor\":\"wave\""));
    running.stopReading();
    EXPECT_EQ(running.wait(), 0);
    EXPECT_FALSE(says(running.err(), "standard output")) << "quietly";
    EXPECT_TRUE(says(running.err(), "frames: "));
}

TEST(HostProgram, RunsTheExamples)
{
    const std::string folder = EXAMPLES_FOLDER;
    HostProcess check(host, {"check", folder + "/first-light.toml", folder + "/devices.toml"});
    EXPECT_EQ(check.wait(), 0);
    EXPECT_EQ(check.err(), ""); // not even a note

    EXPECT_EQ(HostProcess(host, {"run", folder + "/pictures.toml", "--frames", "3"}).wait(), 0);

    HostProcess maker(folder + "/make-large-scene", {"2000"});
    ASSERT_EQ(maker.wait(), 0) << maker.err();
    const SceneOnDisk large(maker.out());
    HostProcess running(host, {"run", large.path(), "--frames", "2"});
    EXPECT_EQ(running.wait(), 0);
    EXPECT_TRUE(says(running.err(), "and 1980 more sensors without connection\n"));
    EXPECT_TRUE(says(running.err(), "and 1980 more routes\n"));
}

TEST(HostProgram, FailsWhenItsOutputIsLost)
{
    const SceneOnDisk scene("[[sensor]]\nname = \"s\"\ntype = \"SFBool\"\n");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"version"}, {"run", scene.path(), "--frames", "1", "--format", "json"}}) {
        std::vector<std::string> shell{"-c", "exec \"$0\" \"$@\" > /dev/full", host};
        shell.insert(shell.end(), arguments.begin(), arguments.end());
        HostProcess process("sh", shell);
        EXPECT_EQ(process.wait(), 1) << arguments[0];
        EXPECT_TRUE(process.err().ends_with("standard output cannot be written to\n")) << process.err();
    }
}

TEST(HostProgram, ChecksWhetherAllOfASceneCanWork)
{
    const std::string handler = "[[handler]]\nkind = \"Trovio\"\nname = \"a\"\n";
    const std::string sensors = "[[sensor]]\nname = \"s\"\ntype = \"SFFloat\"\nlabel = \"In\"\n"
                                "[[sensor]]\nname = \"t\"\ntype = \"SFFloat\"\nlabel = \"Out\"\noutput = true\n";
    const auto nodes = [&](const std::string& list) { return handler + "nodes = [" + list + "]\n" + sensors; };
    const auto route = [&](const std::string& from, const std::string& to) {
        return handler + "nodes = [[\"Generator\"], [\"Scale\"]]\nroutes = [[\"" + from + "\", \"" + to + "\"]]\n" +
               sensors;
    };
    const auto star = [&](const std::string& from) {
        return handler + "nodes = [[\"OSC\", \"listen=9000 in='/hmd s:a Float:x Long:y, /wand/* Float:x'\"]]\n" +
               "routes = [[\"" + from + "\", \"In\"]]\n" + sensors;
    };
    const SceneOnDisk broken("no library", "trovio-node-Broken.so");
    struct Row {
        std::string _scene;
        int _code; // 0: only --strict refuses it
        std::string _says;
    };
    const Row rows[] = {
        {nodes("[\"Genrator\"]"), 2, ":4:11: node type 'Genrator' is not known; allowed: "},
        {nodes("[\"Generator\", \"rat=5\"]"), 2, ":4:24: setting 'rat' (value '5') is not known; allowed: ampl"},
        {nodes("[\"Generator\", \"shape=sinus\"]"), 2, "one of sine, ramp, square, steps, noise; nearest: 'sine'"},
        {nodes("[\"Broken\"]"), 0, ":4:11: note: module '"},
        {"[[handler]]\nkind = \"Trovia\"\nname = \"a\"\n", 2,
         ":2:8: unknown handler kind 'Trovia'; allowed: Trovio, OT, ORDAN; nearest: 'Trovio'"},
        {"[[handler]]\nkind = \"TORVA\"\nname = \"a\"\n", 2, ":2:8: no handler of kind 'TORVA' can be made"},
        {route("Generator/valu", "In"), 0,
         ":5:12: note: the route from 'Generator/valu' to 'In' is not connected: no slot has the label "
         "'Generator/valu'; did you mean 'Generator/value'?\n"},
        {route("Generatr/*", "*"), 0, " is not connected: no slot has the label 'Generatr/*'\n"},
        {route("In", "Generator/value"), 0, "'In' is an in-slot, and 'Generator/value' an out-slot; swap the two ends"},
        {route("Generator/value", "Out"), 0, "sensor 't' at 'Out' has `output = true`, so it gives values"},
        {route("Scale/out", "Scale/in"), 0, ": note: 'Scale/out' and 'Scale/in' stay apart: "},
        {route("Out", "Scale/in") + "[[route]]\nfrom = \"Generator/value\"\nto = \"Context/In\"\n", 0,
         "no slot has the label 'Generator/value'; did you mean 'Context/Generator/value'?\n"},
        {star("OSC/hmd/a/z"), 0, "no slot has the label 'OSC/hmd/a/z'; did you mean 'OSC/hmd/a/x'?\n"},
        {star("OSC/wand/left"), 0, "no slot has the label 'OSC/wand/left'"},
        {"[[sensor]]\nname = \"s\"\ntype = \"SFBool\"\n", 0, ":2:8: note: sensor 's' has no label"},
    };
    const std::string folder = "TROVIO_NODE_PATH=" + broken.path().substr(0, broken.path().rfind('/'));
    for (const Row& row : rows) {
        const SceneOnDisk scene(row._scene);
        for (const bool strict : {false, true}) {
            std::vector<std::string> arguments{folder, host, "check", scene.path()};
            if (strict)
                arguments.push_back("--strict");
            HostProcess check("env", arguments);
            EXPECT_EQ(check.wait(), strict ? 2 : row._code) << row._says;
            EXPECT_TRUE(says(check.err(), row._says));
            EXPECT_EQ(check.out().find(": good: "), check.out().empty() ? std::string::npos : scene.path().size());
            EXPECT_EQ(check.out().empty(), strict || row._code != 0);
        }
    }
}

TEST(HostProgram, CheckKnowsWhichLabelsANodeMakesWhileItRuns)
{
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"a\"\n"
                            "nodes = [[\"OSC\", \"listen=9000 in='/hmd Float, /wand/* Float:x'\"]]\n"
                            "routes = [[\"OSC/wand/left/x\", \"In\"], [\"OSC/wand/*/x\", \"In\"]]\n"
                            "[[sensor]]\nname = \"s\"\ntype = \"SFFloat\"\nlabel = \"In\"\n");
    HostProcess check(host, {"check", scene.path(), "--strict"});
    EXPECT_EQ(check.wait(), 0);
    EXPECT_EQ(check.err(), "");
}

// What a node's slots are nobody knows that cannot be made.
TEST(HostProgram, RunsWithoutWhatCannotBeMadeUnlessItIsStrict)
{
    const SceneOnDisk scene("[[handler]]\nkind = \"Trovio\"\nname = \"a\"\nnodes = [[\"Generator\", \"rate=x\"]]\n"
                            "routes = [[\"Generator/valu\", \"In\"], [\"Gen*\", \"In\"]]\n"
                            "[[sensor]]\nname = \"s\"\ntype = \"SFFloat\"\nlabel = \"In\"\n");
    const std::string fault = scene.path() + ":4:24: ";
    HostProcess check(host, {"check", scene.path()});
    EXPECT_EQ(check.wait(), 2);
    EXPECT_EQ(check.err(), fault + "setting 'rate': value 'x' is not allowed; allowed: number from 0.001 to 1e+05\n");
    HostProcess running(host, {"run", scene.path(), "--frames", "1"});
    EXPECT_EQ(running.wait(), 0);
    EXPECT_TRUE(says(running.err(), fault + "node 'Generator' could not be made: "));
    EXPECT_TRUE(says(running.err(), "; the run went without it\n"));
    EXPECT_FALSE(says(running.err(), "Invalid")) << "not by the log, too: ";
    HostProcess strict(host, {"run", scene.path(), "--frames", "1", "--strict"});
    EXPECT_EQ(strict.wait(), 2);
    EXPECT_EQ(strict.err(), check.err() + "nothing was run, as --strict asks\n");
}

TEST(HostProgram, SaysWhatWasAskedForWhenMemoryRunsOut)
{
#if defined(OSTREL_ADDRESS_SANITIZER) || defined(OSTREL_THREAD_SANITIZER)
    GTEST_SKIP() << "sanitizers need more address space than there is to be";
#endif
    const SceneOnDisk scene("[[sensor]]\nname = \"m\"\ntype = \"SFMatrix4d\"\nlabel = \"M\"\nbuffer = 1000000\n"
                            "[[sensor]]\nname = \"n\"\ntype = \"SFMatrix4d\"\nlabel = \"N\"\nbuffer = 900000\n"
                            "[[sensor]]\nname = \"s\"\ntype = \"SFString\"\nlabel = \"S\"\nbuffer = 6000\n"
                            "[[handler]]\nkind = \"Trovio\"\nname = \"a\"\n");
    HostProcess running("sh", {"-c", "ulimit -v 200000; exec \"$0\" run \"$1\"", host, scene.path()});
    EXPECT_EQ(running.wait(), 1);
    EXPECT_TRUE(says(running.err(),
                     "memory ran out: " + scene.path() +
                         " asks for 247 MiB for the slots and buffers of its "
                         "sensors alone, most of it 130 MiB for sensor 'm' (a buffer of 1000000 values of 136 "));
    HostProcess check(host, {"check", scene.path()});
    EXPECT_EQ(check.wait(), 0);
    EXPECT_TRUE(
        says(check.err(), ":15:10: note: the buffer of sensor 's' of type SFString keeps 6000 values, also when "));
}

TEST(HostProgram, SaysWithItsExitCodeHowItWent)
{
    const SceneOnDisk bad("[[sensor]]\nnam = \"a\"\n");
    struct Row {
        std::vector<std::string> _arguments;
        int _code;
        const char* _says;
    };
    const Row rows[] = {
        {{"--help"}, 0, "ostrel-host [OPTIONS] SUBCOMMAND"},
        {{"run", "--help"}, 0, "--format"},
        {{"version"}, 0, "ostrel-host "},
        {{"types", "MFVec3f"}, 0, "Vec3f[]"},
        {{"nodes", "Generator"}, 0, "default: sine"},
        {{"--version"}, 0, "ostrel-host "},
        {{}, 2, "ostrel-host [OPTIONS] SUBCOMMAND"},
        {{"--seconds"}, 2, "subcommand is required"},
        {{"nodes", "Generator", "--format", "json"}, 0, "\"default\":\"sine\""},
        {{"rum"}, 2, "nearest: 'run'"},
        {{"recording", "chekc", "a.mcap"}, 2, "nearest: 'check'"},
        {{"run", "s.toml", "--rate", "nan"}, 2, "'nan' is not a rate"},
        {{"run", "s.toml", "--format", "jsn"}, 2, "nearest: 'json'"},
        {{"run", bad.path()}, 2, ":2:1: unknown key 'nam' in [[sensor]]"},
        {{"check", "no/such.toml"}, 2, "cannot be opened"},
        {{"types", "SFVec9"}, 3, "no field type is called 'SFVec9'"},
        {{"nodes", "Generater"}, 3, "nearest: 'Generator'"},
    };
    for (const Row& row : rows) {
        HostProcess process(host, row._arguments);
        EXPECT_EQ(process.wait(), row._code) << row._says;
        EXPECT_TRUE(says(process.out() + process.err(), row._says));
    }
}
} // namespace
