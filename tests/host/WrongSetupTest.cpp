#include "tests/host/HostProcess.h"
#include "tests/nodes/OscMessages.h"
#include "tests/nodes/UdpPeer.h"
#include "tests/support/Says.h"
#include "tests/support/SceneOnDisk.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

// What users get wrong, and what `why` says to it: each row is a scene that carries nothing, or not what was meant.
namespace {

using namespace Trovio::Nodes;
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
const std::string source = R"(["Generator", "rate=200"])", filter = R"(["OneEuro"])";
const std::string direct = R"(["Generator/value", "Wave"])", filtered = R"(["OneEuro/out", "Wave"])";
const std::string oscRoute = R"(["OSC/wand", "Wand"])";

/// `PORT` in a scene is a free port of this machine, `DOMAIN` the number of a domain of DDS of its own.
std::string osc(const std::string& settings)
{
    return "[\"OSC\", \"" + settings + "\"]";
}

const char* const toWave = "Generator/value Wave";
const char* const toWand = "OSC/wand Wand";

struct WrongSetup {
    const char* _name;
    std::string _scene, _question;
    int _code;
    Words _says, _saysNot;
    std::function<Packet()> _comes; // what another program sends to the port, again and again
    std::string _beside;            // the scene of a program that runs meanwhile
};

Packet vectorTo(const std::string& address)
{
    return numbersMessage(address, 'f', {0, 0, 0});
}

/// A bundle of one message to /wand, stamped that far from now.
Packet wandAt(int secondsFromNow)
{
    constexpr std::uint64_t toEpochOf1900 = 2208988800U;
    const auto seconds = toEpochOf1900 + static_cast<std::uint64_t>(std::time(nullptr) + secondsFromNow);
    return bundleOf(seconds << 32U, {vectorTo("/wand")});
}

/// Both ends of a topic, each in a program of its own.
const std::string publisher = handler(
    "[\"Generator\", \"type=Vec3f\"], [\"DDS\", \"publish='Wand Vec3f' interface=lo domain=DOMAIN partition=left\"]",
    R"(["Generator/value", "DDS/Wand"])");
const std::string subscriber =
    handler(R"(["DDS", "subscribe='Wand Vec3f' interface=lo domain=DOMAIN lease=0.5 partition=right"])",
            R"(["DDS/Wand", "Wand"])") +
    wand;

WrongSetup row(const char* name, const std::string& scene, const std::string& question, int code, const Words& says,
               const Words& saysNot = {}, const std::function<Packet()>& comes = {}, const std::string& beside = {})
{
    return {name, scene, question, code, says, saysNot, comes, beside};
}

const WrongSetup setups[] = {
    // Scenes: types, settings, labels, directions.
    row("type misspelt", handler(R"(["Genrator", "rate=200"])", direct) + wave, toWave, 3,
        {"not made", ":4:11: node 'Genrator' could not be made", "nearest: 'Generator'"}, {"no slot has"}),
    row("setting misspelt", handler(R"(["Generator", "rte=200"])", direct) + wave, toWave, 3,
        {"not made", "node 'Generator' could not be made", "rte", "nearest: 'rate'"}, {"no slot has"}),
    row("settings refused beside a neighbour", handler(R"(["Generator", "rate=x"], )" + source, direct) + wave, toWave,
        3, {"not made", "rate"}, {"flow from", "Generator2"}),
    row("output missing", handler(osc("send=127.0.0.1:PORT out='/w Float'"), R"(["Wave", "OSC/w"])") + wave,
        "Wave OSC/w", 3, {"sensor 'wave' (label 'Wave') is an input", "set output = true"}, {"swap"}),
    row("output for the target of a slot", handler(source, "") + wave + "output = true\n", "Wave Generator/value", 3,
        {"'Generator/value' is an out-slot", "take output = true away at", " and swap the two ends"}),
    row("neighbour of a node that was refused", handler(R"(["Generator", "rate=x"], )" + source, direct) + wave,
        "Generator2/value Wave", 3,
        {"no route leads from 'Generator2/value' to 'Wave'", "node 'Generator' could not be made",
         R"(write ["Generator2/value", "Wave"])"},
        {"not made"}),
    row("target of a pattern", handler(source, direct) + wave, "Gen* Wav*", 3,
        {"no slot has the label 'Waverator/value'", "asked for 'Gen*' -> 'Wav*'"}),
    row("output too much", handler(source, direct) + wave + "output = true\n", toWave, 3,
        {"is an output", "take output = true away"}, {"swap"}),
    row("node for its in-slot", handler(source + "," + filter, R"(["Generator/value", "OneEuro"],)" + filtered) + wave,
        toWave, 3,
        {"-> 'OneEuro': no slot has the label 'OneEuro'",
         R"(write ["Generator/value", "OneEuro/in"] into the routes of handler 'h')"}),
    row("node for its out-slot", handler(source + "," + filter, R"(["Generator", "OneEuro/in"],)" + filtered) + wave,
        toWave, 3, {"no slot has the label 'Generator'", R"(write ["Generator/value", "OneEuro/in"])"}),
    row("namespace in the handler's route", handler(source, R"(["Context/Generator/value", "Context/Wave"])") + wave,
        toWave, 3, {R"(write ["Generator/value", "Wave"] into the routes of handler 'h')"}),
    row("no namespace in the root's route",
        handler(source, "") + wave + "[[route]]\nfrom = \"Generator/value\"\nto = \"Wave\"\n", toWave, 3,
        {R"(write [[route]] from = "Context/Generator/value" to = "Context/Wave")"}),
    row("no route", handler(source, "") + wave, toWave, 3,
        {"no route leads on", R"(write ["Generator/value", "Wave"] into the routes of handler 'h')"}),
    row("no route, and none would do", handler(source, "") + wand, "Generator/value Wand", 3,
        {"no route leads on", "their types differ"}, {"write ["}),
    row("target misspelt", handler(source, R"(["Generator/value", "Wvae"])") + wave, toWave, 3,
        {"no slot has the label 'Wvae'", R"(write ["Generator/value", "Wave"])"}),
    row("name for label",
        handler(source, R"(["Generator/value", "stick"])") + sensor("name = \"stick\"\nlabel = \"P\""),
        "Generator/value stick", 3, {"'stick' is the name of a sensor", "by its label: 'P'"}),
    row("no label", handler(source, R"(["Generator/value", "wave"])") + sensor("name = \"wave\""),
        "Generator/value wave", 3, {"has no label", "label = \"wave\""}),
    row("in and out mixed up",
        handler(source + "," + filter, R"(["Generator/value", "OneEuro/out"], ["OneEuro/in", "Wave"])") + wave, toWave,
        3, {"'OneEuro/out' is an out-slot", R"(write ["Generator/value", "OneEuro/in"])"}, {"swap"}),
    row("sensor of another type", handler(source, direct) + sensor("name = \"w\"\nlabel = \"Wave\"", "SFVec3f"), toWave,
        4, {"a sensor of type SFFloat at 'Wave' would fit"}),
    row("filter of another type",
        handler(R"(["Generator", "type=Vec3f"], )" + filter, R"(["Generator/value", "OneEuro/in"])") + wand,
        "Generator/value OneEuro/in", 4, {"node 'OneEuro' (OneEuro) with type=Vec3f would fit"}),
    row("loop", handler(R"(["OneEuro"], ["Scale"])", R"(["OneEuro/out", "Scale/in"], ["Scale/out", "OneEuro/in"])"),
        "Scale/out OneEuro/in", 3, {"loop: ", "take one of these routes away"}),
    // Handlers.
    row("no handler", wave, toWave, 3, {"no handler of kind 'Trovio'"}, {"no slot has"}),
    row("kind misspelt", handler(source, direct, "kind = \"Trvio\"\nname = \"h\"") + wave, toWave, 3,
        {"unknown handler kind 'Trvio'", "nearest: 'Trovio'"}, {"no slot has"}),
    row("kind misspelt before a good handler",
        handler(source, direct, "kind = \"Trvio\"\nname = \"bad\"") + handler(source, direct) + wave,
        "Context/Generator/value Context/Wave", 3,
        {"not made", ":2:8: handler 'bad' of kind 'Trvio' could not be made"}, {"flow from"}),
    row("kind of devices", handler(source, direct, "kind = \"OT\"\nname = \"h\"") + wave, toWave, 3,
        {"no handler of kind 'Trovio'", ":2:8: handler 'h' is of kind 'OT'"}, {"no slot has"}),
    row("route in the other handler", handler(source, "", "name = \"a\"") + handler("", direct, "name = \"b\"") + wave,
        toWave, 3, {"routes of handler 'a'", "handler 'b' has this route, but"}),
    // Filters.
    row("not a number",
        handler(R"(["Clamp"])", R"(["Odd", "Clamp/in"], ["Clamp/out", "Wave"])") + wave +
            sensor("name = \"odd\"\nlabel = \"Odd\"\nvalue = nan\noutput = true"),
        "Odd Wave", 3, {"filtered", "with a value that is not finite", "everything since 20"}, {"stamp"}),
    row("nothing leads into the filter", handler(filter, filtered) + wave, "OneEuro/out Wave", 3,
        {"nothing has come into 'OneEuro/in', and no route leads there"}),
    // Producers and buffers.
    row("two producers",
        handler(source + R"(, ["Generator", "rate=300"])", direct + R"(, ["Generator2/value", "Wave"])") + wave, toWave,
        0, {"records flow", "2 write into 'Wave': 'Generator/value' ", "'Generator2/value' ", "were overwritten"}),
    row("no buffer", handler(R"(["Generator", "rate=1000"])", direct) + wave, toWave, 0,
        {"were overwritten before they were read", "; buffer = ", " at sensor 'wave' would have held them"},
        {"write into"}),
    // Time.
    row("stamps of the future", handler(osc("listen=127.0.0.1:PORT in='/wand Vec3f'"), oscRoute) + wand, toWand, 0,
        {"s in the future", "its stamp says 20", "the clock of this machine 20"}, {}, [] { return wandAt(3600); }),
    row("stamps of the past", handler(osc("listen=127.0.0.1:PORT in='/wand Vec3f'"), oscRoute) + wand, toWand, 3,
        {"stale", "its stamp says 20", "records still come, so set the clock"}, {"look at the device"},
        [] { return wandAt(-3600); }),
    // Other programs.
    row("address misspelt", handler(osc("listen=127.0.0.1:PORT in='/wand Vec3f'"), oscRoute) + wand, toWand, 3,
        {"never written", "none for /wand", " for /wond (fff)"}, {"no packets"}, [] { return vectorTo("/wond"); }),
    row("sends, and was to receive", handler(osc("send=127.0.0.1:PORT out='/wand Vec3f'"), oscRoute) + wand, toWand, 3,
        {"'OSC/wand' is an in-slot", "ostrel-host nodes OSC says which slots"}, {"swap"}),
#ifdef HAS_DDS
    row("published in another partition", subscriber, "DDS/Wand Wand", 3,
        {"publishes it (Vec3f) in partition left, here it is in partition right", "give both ends one partition"},
        {"interface=NAME"}, {}, publisher),
#endif
    // And where nothing is wrong.
    row("nothing wrong", handler(source, direct) + sensor("name = \"w\"\nlabel = \"Wave\"\nbuffer = 64"), toWave, 0,
        {"records flow", " 0 overwritten", " old\n"}, {"nothing", "write"}),
};

/// A scene that `why` looks at, in a process of its own, and what sends to it; all of them run at once.
class Asked {
public:
    explicit Asked(const WrongSetup& setup)
        : _setup(setup),
          _to(UdpPeer().getAddress()), // free again at once
          _besideFile(filled(setup._beside)),
          _file(filled(setup._scene)),
          _beside(setup._beside.empty() ? nullptr : started(_besideFile)),
          _process("sh",
                   {"-c", "exec \"$0\" why \"$1\" $2 --patience 0.4 --seconds 15", host, _file.path(), setup._question})
    {
    }

    /// Whether it still goes on. Waits a while for the answer.
    bool goesOn()
    {
        if (_setup._comes)
            _peer.send(_setup._comes(), _to);
        return !_process.waitFor("\n", 2);
    }

    void expectAnswer()
    {
        const int code = _process.wait();
        const std::string said = _process.out() + _process.err();
        EXPECT_EQ(code, _setup._code) << said;
        for (const std::string& words : _setup._says)
            EXPECT_TRUE(says(said, words));
        for (const std::string& words : _setup._saysNot)
            EXPECT_FALSE(says(said, words));
    }

    const char* name() const { return _setup._name; }

private:
    /// Its nodes run: on a machine with much to do, an answer within the patience would come before that.
    static std::unique_ptr<HostProcess> started(const SceneOnDisk& scene)
    {
        auto process = std::make_unique<HostProcess>(host, std::vector<std::string>{"run", scene.path(), "--quiet"});
        EXPECT_TRUE(process->waitFor("running")) << process->err();
        return process;
    }

    std::string filled(std::string scene) const
    {
        const unsigned domain = _to.getPort() % 230U;
        for (const auto& [mark, number] : {std::pair("PORT", unsigned{_to.getPort()}), std::pair("DOMAIN", domain)})
            if (const std::size_t at = scene.find(mark); at != std::string::npos)
                scene.replace(at, std::strlen(mark), std::to_string(number));
        return scene;
    }

    const WrongSetup& _setup;
    const SocketAddress _to;
    const SceneOnDisk _besideFile, _file;
    const UdpPeer _peer;
    const std::unique_ptr<HostProcess> _beside;
    HostProcess _process;
};

TEST(Why, NamesWhatIsWrongAndNoWrongCure)
{
    constexpr std::size_t atOnce = 8;
    for (std::size_t first = 0; first < std::size(setups); first += atOnce) {
        std::vector<std::unique_ptr<Asked>> asked;
        for (std::size_t i = first; i < std::min(first + atOnce, std::size(setups)); ++i)
            asked.push_back(std::make_unique<Asked>(setups[i]));
        while (std::ranges::count_if(asked, [](const auto& running) { return running->goesOn(); }) != 0) {
        }
        for (const auto& running : asked) {
            SCOPED_TRACE(running->name());
            running->expectAnswer();
        }
    }
}
} // namespace
