#include "tests/host/AskFixture.h"

#include <csignal>
#include <gtest/gtest.h>

namespace {

const std::string host = HOST_PROGRAM;
const std::string completion = EXAMPLES_FOLDER "/../host/completion/ostrel-host";

/// A wave goes through a filter into a sensor; others wait for values from outside.
constexpr char scene[] =
    "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\n"
    "nodes = [[\"Generator\", \"rate=200\"], [\"Scale\", \"gain=2\"], [\"Generator\", \"type=Vec3f\"]]\n"
    "routes = [[\"Generator/value\", \"Scale/in\"], [\"Scale/out\", \"Wave\"]]\n"
    "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n"
    "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\nbuffer = 8\n"
    "[[sensor]]\nname = \"note\"\ntype = \"SFString\"\nlabel = \"Note\"\n";

class Ask : public AskFixture {
protected:
    Ask() : AskFixture(scene) {}
};

TEST_F(Ask, EveryVerbHasItsAnswer)
{
    const RunningScene running(_scene);
    expectAll({
        {"$host list", 0, "\nGenerator/value   out  Float "},
        {"$host list --names | LC_ALL=C sort | head -n 2", 0, "Generator/value\nGenerator2/value\n"},
        {"$host list --format json", 0, "\"rate\":"},
        {"$host echo Generator/value --once", 0, "     0."},
        {"$host echo Context/Wave -n 2 --format json", 0, ",\"value\":"},
        {"$host echo out -n 1", 0, "     0."},
        {"$host echo Generator/value -n 2 --format csv", 0, "time,stamp,value\n1"},
        {"$host echo Generator/value | head -n 1", 0, "     0."},
        {"$host hz Generator/value -n 1", 0, " records/s ("},
        {"$host bw Generator/value -n 1", 0, " records/s of 8.0 bytes"},
        {"$host delay Generator/value Wave --seconds 0.3", 0, "\nContext/Wave "},
        {"$host pub Wand '[0.5, 1, -2]' && until $host echo wand --once | grep '0.5 1 -2'; do :; done", 0, "0.5 1 -2"},
        {"$host pub Note hello && until $host echo note --once | grep hello; do :; done", 0, "'hello'"},
        {"$host echo Generator2/value --format csv --once", 0, "value[0],value[1],value[2]"},
        {"printf '{\"stamp\":5,\"value\":[4,5,6]}\\n{\"dropped\":3}\\n{\"value\":[7,8,9]}\\n' | $host pub Wand - -n 3 "
         "&&"
         " until $host echo wand --once | grep '7 8 9'; do :; done",
         0, "7 8 9"},
        {"$host why Generator/value Wave", 0, "records flow"},
        {"$host why Wand Note", 3, "nothing flows"},
        {"$host why", 3, "'Context/Wand'"},
        {"$host why Nope Wave", 3, "no such label: no slot has the label 'Nope'\n"},
        {"touch $scene && $host why $scene Generator/value Wave", 0, "which runs this scene\n"},
        {"$host graph", 0, "Generator"},
        {"$host graph --format dot", 0, "digraph"},
        {"$host watch --filter WAV | head -n 2", 0, "\nwave    SFFloat "},
    });
}

TEST_F(Ask, CompletionRunsNothingThatALabelSays)
{
    const std::string command = "cd $XDG_RUNTIME_DIR && bash -c '. " + completion + R"sh(
        names() { echo Wand; echo "\$(touch made)"; }
        COMP_WORDS=(names echo "") COMP_CWORD=2
        _ostrel_host names
        printf "%s " "${COMPREPLY[@]}"
        test ! -e made')sh";
    expectAll({{command.c_str(), 0, R"(Wand \$\(touch\ made\) )"}});
}

TEST_F(Ask, SaysWhatIsWrong)
{
    expectAll({{"$host list", 3, "no host runs here"}, {"$host why a b", 3, "start one with: ostrel-host run SCENE"}});
    const auto running = std::make_unique<RunningScene>(_scene);
    expectAll({
        {"$host echo Generator/valeu", 3, "did you mean 'Generator/value'?"},
        {"$host hz wav", 3, "did you mean '"},
        {"$host echo value", 3, "2 slots are called 'value'; say 'Context/Generator"},
        {"$host pub Wave text", 2, "Float"},
        {"$host pub Generator/value 1", 2, "is an out-slot"},
        {"echo oops | $host pub Wave -", 2, "standard input, line 1: 'oops'"},
        {"$host delay Wave Generator/value", 2, "out-slot"},
        {"$host delay Generator/value Wave --seconds 61", 2, "up to 60"},
        {"$host why Wave", 2, "TO is missing"},
        {"$host echo Note", 3, "nothing is connected to 'Context/Note'"},
        {"$host echo Generator/value -n 9999 --seconds 0.1", 124, ""},
        {"DISPLAY=:0 $host open", 3, "start it with --monitor"},
        {"$host list --host 1", 3, "no host has process ID 1; there is: "},
        {"$host list --host $XDG_RUNTIME_DIR/none", 3, "no host answers at"},
        {"$host list > /dev/full", 1, "standard output cannot be written to"},
        {"$host echo Generator/value > /dev/full", 1, "standard output cannot be written to"},
    });
    const RunningScene another(_scene);
    expectAll({{"$host list", 2, "2 hosts run; choose one with --host PID: "},
               {"echo >> $scene; $host why $scene Generator/value Wave --patience 0.1", 0, "but with another text\n"}});
}

TEST_F(Ask, ThatNobodyReadsIsNoFailure)
{
    const RunningScene running(_scene);
    const std::vector<std::string> commands[] = {{"list"},
                                                 {"list", "--names"},
                                                 {"graph"},
                                                 {"why", "Generator/value", "Wave"},
                                                 {"delay", "Generator/value", "Wave", "--seconds", "0.1"},
                                                 {"echo", "Wave"},
                                                 {"hz", "Wave"},
                                                 {"bw", "Wave"},
                                                 {"watch"}};
    for (const auto& command : commands) {
        HostProcess asking(host, command);
        asking.stopReading();
        EXPECT_EQ(asking.wait(), 0) << command.front() << asking.err();
    }
}

TEST_F(Ask, AHostThatEndsInOrderEndsWhoFollowsItWithoutFailure)
{
    const RunningScene running(_scene);
    HostProcess echo(host, {"echo", "Generator/value"}), field(host, {"echo", "wave"}), hz(host, {"hz", "Wave"}),
        some(host, {"echo", "Generator/value", "-n", "99999"});
    for (HostProcess* const following : {&echo, &field, &hz, &some})
        ASSERT_TRUE(following->waitFor("."));
    running.signal(SIGTERM);
    for (HostProcess* const following : {&echo, &field, &hz})
        EXPECT_EQ(following->wait(), 0) << following->err();
    EXPECT_EQ(some.wait(), 124);
    EXPECT_NE(hz.err().find(" has ended"), std::string::npos) << hz.err();
}

TEST_F(Ask, AKilledHostIsNamedAndNotInTheWay)
{
    auto running = std::make_unique<RunningScene>(_scene);
    HostProcess echo(host, {"echo", "Generator/value"});
    ASSERT_TRUE(echo.waitFor("     0."));
    running.reset();
    EXPECT_EQ(echo.wait(), 1);
    EXPECT_NE(echo.err().find(" has ended before its answer did"), std::string::npos) << echo.err();
    expectAll({{"ls $XDG_RUNTIME_DIR/ostrel; $host list", 3, ".sock\n"}});
    const RunningScene next(_scene);
    expectAll({{"$host hz Wave -n 1", 0, " records/s"}});
}
} // namespace
