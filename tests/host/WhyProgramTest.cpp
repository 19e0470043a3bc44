#include "tests/host/HostProcess.h"
#include "tests/nodes/UdpPeer.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <csignal>
#include <gtest/gtest.h>

namespace {

const std::string host = HOST_PROGRAM;

/// A wave goes through a filter into a sensor, and a device that nothing sends to waits beside it. The first handler
/// has some of the labels, too.
constexpr char scene[] =
    "[[handler]]\nkind = \"Trovio\"\nname = \"spare\"\nnodes = [[\"Generator\"]]\n"
    "[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Generator\", \"rate=200\"], [\"Scale\", \"gain=2\"],\n"
    "  [\"OSC\", \"listen=127.0.0.1:0 in='/wand Vec3f'\"]]\n"
    "routes = [[\"Generator/value\", \"Scale/in\"], [\"Scale/out\", \"Wave\"], [\"OSC/wand\", \"Wand\"]]\n"
    "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n"
    "[[sensor]]\nname = \"wand\"\ntype = \"SFVec3f\"\nlabel = \"Wand\"\n";

// What the wrong set-ups do not show: namespaces, patterns, options and forms.
TEST(Why, AnswersAsItIsAsked)
{
    const SceneOnDisk file(scene);
    const struct {
        std::vector<std::string> _arguments; // behind the scene
        int _code;
        const char* _says;
    } rows[] = {
        {{"Context2/Scale/out", "Context2/Wave", "--patience", "0.2"}, 0, "records flow"},
        {{"Generator/value", "Scale/in", "--patience", "0.2", "--format", "json"}, 0, "\"overwritten\":0,"},
        {{"Scale/*", "Wave", "--patience", "0.2", "--format", "json"},
         0,
         "\"verdict\":\"flowing\",\"text\":\"records flow"},
        {{"OSC/wand", "Wand", "--seconds", "0.5"}, 3, "never written: "},
        {{"OSC/wand", "Wand", "--seconds", "0.0005"}, 124, "no answer in the time given; so far: nothing flows"},
        {{"OSC/wand", "*"}, 2, "has 1 '*', but its pattern 'OSC/wand' only 0"},
        {{"OSC/wand"}, 2, "TO is missing"},
    };
    for (const auto& row : rows) {
        std::vector<std::string> arguments{"why", file.path()};
        arguments.insert(arguments.end(), row._arguments.begin(), row._arguments.end());
        HostProcess process(host, arguments);
        EXPECT_EQ(process.wait(), row._code) << process.out() << process.err();
        EXPECT_TRUE(says(process.out() + process.err(), row._says));
    }
}

TEST(Why, SaysWhatItKnowsWhereASignalEndsIt)
{
    const Trovio::Nodes::UdpPeer peer;
    // What comes from a link went through a frame: the scene is built.
    const SceneOnDisk file("[[handler]]\nkind = \"Trovio\"\nname = \"h\"\nnodes = [[\"Generator\"],\n"
                           "[\"OSC\", \"send=127.0.0.1:" +
                           std::to_string(peer.getPort()) +
                           " out='/w Float'\"]]\nroutes = [[\"Generator/value\", \"Wave\"], [\"Out\", \"OSC/w\"]]\n"
                           "[[sensor]]\nname = \"wave\"\ntype = \"SFFloat\"\nlabel = \"Wave\"\n"
                           "[[sensor]]\nname = \"out\"\ntype = \"SFFloat\"\nlabel = \"Out\"\noutput = true\n"
                           "[[link]]\nfrom = \"wave.value\"\nto = \"out.value\"\n");
    HostProcess process(host, {"why", file.path(), "Generator/value", "Wave", "--patience", "600"});
    peer.receive();
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait(), 124);
    EXPECT_TRUE(says(process.out(), "interrupted; so far: ")) << process.err();
}

} // namespace
