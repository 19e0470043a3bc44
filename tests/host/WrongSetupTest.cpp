#include "tests/host/HostProcess.h"
#include "tests/host/SceneOnDisk.h"
#include "tests/nodes/UdpPeer.h"

#include <cstdint>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

// What users get wrong, and what `why` says to it: each row is a scene that carries nothing, or not what was meant.
namespace {

using Packet = std::vector<std::uint8_t>;
using Trovio::Nodes::UdpPeer;
using Words = std::vector<std::string>;

const std::string host = HOST_PROGRAM;

/// A handler from the insides of its lists of nodes and routes.
std::string handler(const std::string& nodes, const std::string& routes, const std::string& head = "name = \"h\"")
{
    const std::string kind = head.find("kind") == std::string::npos ? "kind = \"Trovio\"\n" : "";
    return "[[handler]]\n" + kind + head + "\nnodes = [" + nodes + "]\nroutes = [" + routes + "]\n";
}

std::string sensor(const std::string& keys, const std::string& type = "SFFloat")
{
    return "[[sensor]]\ntype = \"" + type + "\"\n" + keys + "\n";
}

const std::string wave = sensor("name = \"wave\"\nlabel = \"Wave\"");
const std::string wand = sensor("name = \"wand\"\nlabel = \"Wand\"", "SFVec3f");
const std::string source = R"(["Generator", "rate=200"])";
const std::string direct = R"(["Generator/value", "Wave"])";
const std::string oscRoute = R"(["OSC/wand", "Wand"])";

/// `PORT` in a scene is a free port of this machine.
std::string osc(const std::string& settings)
{
    return "[\"OSC\", \"" + settings + "\"]";
}

struct WrongSetup {
    const char* _name;
    std::string _scene;
    const char *_from, *_to;
    int _code;
    Words _says, _saysNot;
    std::function<Packet()> _comes = {}; // what another program sends to the port, again and again
};

/// A bundle of one message to /wand with three numbers, stamped that far from now.
Packet wandAt(int secondsFromNow)
{
    constexpr std::uint32_t toEpochOf1900 = 2208988800U;
    const std::uint32_t seconds =
        static_cast<std::uint32_t>(std::time(nullptr)) + toEpochOf1900 + static_cast<std::uint32_t>(secondsFromNow);
    const std::string message = std::string("/wand\0\0\0,fff\0\0\0\0", 16) + std::string(12, '\0');
    std::string bundle("#bundle\0", 8);
    for (int shift = 24; shift >= 0; shift -= 8)
        bundle += static_cast<char>(seconds >> shift);
    bundle += std::string(7, '\0') + static_cast<char>(message.size()) + message;
    return {bundle.begin(), bundle.end()};
}

const WrongSetup setups[] = {
    // Scenes: types, settings, labels, directions.
    {"type misspelt",
     handler(R"(["Genrator", "rate=200"])", direct) + wave,
     "Generator/value",
     "Wave",
     3,
     {"not made", ":4:11: node 'Genrator' could not be made", "nearest: 'Generator'"},
     {"is in scope"}},
    {"setting misspelt",
     handler(R"(["Generator", "rte=200"])", direct) + wave,
     "Generator/value",
     "Wave",
     3,
     {"not made", "node 'Generator' could not be made", "rte"},
     {"is in scope"}},
    {"setting out of range",
     handler(R"(["Generator", "rate=0"])", direct) + wave,
     "Generator/value",
     "Wave",
     3,
     {"not made", "rate"},
     {"is in scope"}},
    {"settings refused beside a neighbour",
     handler(R"(["Generator", "rate=x"], )" + source, direct) + wave,
     "Generator/value",
     "Wave",
     3,
     {"not made", "rate"},
     {"flow from", "Generator2"}},
    {"output missing",
     handler(osc("send=127.0.0.1:PORT out='/w Float'"), R"(["Wave", "OSC/w"])") + wave,
     "Wave",
     "OSC/w",
     3,
     {"sensor 'wave' (label 'Wave') is an input", "set output = true"},
     {"swap"}},
    {"output too much",
     handler(source, direct) + wave + "output = true\n",
     "Generator/value",
     "Wave",
     3,
     {"is an output", "take output = true away"},
     {"swap"}},
    {"namespace in the handler's route",
     handler(source, R"(["Context/Generator/value", "Context/Wave"])") + wave,
     "Generator/value",
     "Wave",
     3,
     {R"(write ["Generator/value", "Wave"] into the routes of handler 'h')"},
     {}},
    {"no route",
     handler(source, "") + wave,
     "Generator/value",
     "Wave",
     3,
     {"no route leads on", R"(write ["Generator/value", "Wave"] into the routes of handler 'h')"},
     {}},
    {"no route, and none would do",
     handler(source, "") + wand,
     "Generator/value",
     "Wand",
     3,
     {"no route leads on", "their types differ"},
     {"write ["}},
    {"target misspelt",
     handler(source, R"(["Generator/value", "Wvae"])") + wave,
     "Generator/value",
     "Wave",
     3,
     {"no slot 'Wvae'", R"(write ["Generator/value", "Wave"])"},
     {}},
    {"asked for a misspelt label",
     handler(source, direct) + wave,
     "Generator/value",
     "Wvae",
     3,
     {"nearest: 'Wave'"},
     {}},
    {"asked for the node", handler(source, direct) + wave, "Generator", "Wave", 3, {"nearest: 'Generator/value'"}, {}},
    {"case",
     handler(source, R"(["generator/value", "wave"])") + wave,
     "Generator/value",
     "Wave",
     3,
     {R"(write ["Generator/value", "Wave"])"},
     {}},
    {"name for label",
     handler(source, R"(["Generator/value", "stick"])") + sensor("name = \"stick\"\nlabel = \"P\""),
     "Generator/value",
     "stick",
     3,
     {"'stick' is the name of a sensor", "by its label: 'P'"},
     {}},
    {"no label",
     handler(source, R"(["Generator/value", "wave"])") + sensor("name = \"wave\""),
     "Generator/value",
     "wave",
     3,
     {"has no label", "label = \"wave\""},
     {}},
    {"type instead of label",
     handler(R"(["Generator", "label=left"])", direct) + wave,
     "Generator/value",
     "Wave",
     3,
     {"nearest: 'left/value'"},
     {}},
    {"sensor of another type",
     handler(source, direct) + sensor("name = \"w\"\nlabel = \"Wave\"", "SFVec3f"),
     "Generator/value",
     "Wave",
     4,
     {"a sensor of type SFFloat at 'Wave' would fit"},
     {}},
    {"pattern that meets nothing",
     handler(source, R"(["Gen/*", "Wave"])") + wave,
     "Generator/value",
     "Wave",
     3,
     {"pattern 'Gen/*' matches none", "'Generator/value'"},
     {}},
    // Handlers.
    {"no handler", wave, "Generator/value", "Wave", 3, {"no handler of kind 'Trovio'"}, {"is in scope"}},
    {"kind misspelt",
     handler(source, direct, "kind = \"Trvio\"\nname = \"h\"") + wave,
     "Generator/value",
     "Wave",
     3,
     {"unknown handler kind 'Trvio'", "nearest: 'Trovio'"},
     {"is in scope"}},
    {"kind of devices",
     handler(source, direct, "kind = \"OT\"\nname = \"h\"") + wave,
     "Generator/value",
     "Wave",
     3,
     {"no handler of kind 'Trovio'"},
     {"is in scope"}},
    {"route in the other handler",
     handler(source, "", "name = \"a\"") + handler("", direct, "name = \"b\"") + wave,
     "Generator/value",
     "Wave",
     3,
     {"routes of handler 'a'", "handler 'b' has this route, but"},
     {}},
    // Producers and buffers.
    {"two producers",
     handler(source + R"(, ["Generator", "rate=300"])", direct + R"(, ["Generator2/value", "Wave"])") + wave,
     "Generator/value",
     "Wave",
     0,
     {"records flow", "2 write into 'Wave': 'Generator/value' ", "'Generator2/value' ", "were overwritten"},
     {}},
    {"no buffer",
     handler(R"(["Generator", "rate=1000"])", direct) + wave,
     "Generator/value",
     "Wave",
     0,
     {"were overwritten before they were read", "; buffer = ", " at sensor 'wave' would have held them"},
     {"write into"}},
    // Time.
    {"stamps of the future",
     handler(osc("listen=127.0.0.1:PORT in='/wand Vec3f'"), oscRoute) + wand,
     "OSC/wand",
     "Wand",
     0,
     {"s in the future", "its stamp says 20", "the clock of this machine 20"},
     {},
     [] { return wandAt(3600); }},
    {"stamps of the past",
     handler(osc("listen=127.0.0.1:PORT in='/wand Vec3f'"), oscRoute) + wand,
     "OSC/wand",
     "Wand",
     3,
     {"stale", "its stamp says 20", "records still come, so set the clock"},
     {"look at the device"},
     [] { return wandAt(-3600); }},
    // And where nothing is wrong.
    {"nothing wrong",
     handler(source, direct) + sensor("name = \"w\"\nlabel = \"Wave\"\nbuffer = 10000"),
     "Generator/value",
     "Wave",
     0,
     {"records flow", " 0 overwritten", " old\n"},
     {"nothing", "write"}},
};

/// A scene that `why` looks at, in a process of its own; all of them run at once.
class Asked {
public:
    explicit Asked(const WrongSetup& setup)
        : _setup(setup),
          _to(UdpPeer().getAddress()), // free again at once
          _file(withPort(setup._scene)),
          _process(host, {"why", _file.path(), setup._from, setup._to, "--patience", "0.4", "--seconds", "15"})
    {
    }

    void expectAnswer()
    {
        while (_setup._comes && !_process.waitFor("\n", 5))
            _peer.send(_setup._comes(), _to);
        const int code = _process.wait();
        const std::string said = _process.out() + _process.err();
        EXPECT_EQ(code, _setup._code) << said;
        for (const std::string& words : _setup._says)
            EXPECT_NE(said.find(words), std::string::npos) << "'" << words << "' is missing in: " << said;
        for (const std::string& words : _setup._saysNot)
            EXPECT_EQ(said.find(words), std::string::npos) << "'" << words << "' stands in: " << said;
    }

private:
    std::string withPort(std::string scene) const
    {
        const std::string mark = "PORT";
        if (const std::size_t at = scene.find(mark); at != std::string::npos)
            scene.replace(at, mark.size(), std::to_string(_to.getPort()));
        return scene;
    }

    const WrongSetup& _setup;
    const Trovio::Nodes::SocketAddress _to;
    const SceneOnDisk _file;
    const UdpPeer _peer;
    HostProcess _process;
};

TEST(Why, NamesWhatIsWrongAndNoWrongCure)
{
    constexpr std::size_t atOnce = 8;
    for (std::size_t first = 0; first < std::size(setups); first += atOnce) {
        std::vector<std::pair<const WrongSetup*, std::unique_ptr<Asked>>> asked;
        for (std::size_t i = first; i < std::min(first + atOnce, std::size(setups)); ++i)
            asked.emplace_back(&setups[i], std::make_unique<Asked>(setups[i]));
        for (const auto& [setup, running] : asked) {
            SCOPED_TRACE(setup->_name);
            running->expectAnswer();
        }
    }
}
} // namespace
