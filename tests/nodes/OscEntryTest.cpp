#include "tests/nodes/OscFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Says.h"
#include <algorithm>

namespace Trovio::Nodes {
namespace {

class OscEntries : public OscFixture {
protected:
    bool isLogged(const LogCapture& log, const std::string& part)
    {
        const auto texts = log.texts();
        return std::ranges::any_of(texts, [&](const std::string& text) { return text.find(part) != text.npos; });
    }
    std::size_t countSlots() { return (*_node)->inspect()._slots.size(); }
};

const Vec3<float> first{1, 2, 3}, second{4, 5, 6};

TEST_F(OscEntries, OneMessageFeedsSeveralSlotsAndFixedArgumentsChoose)
{
    const LogCapture log;
    run("listen=127.0.0.1:0 in='/pose s:\"Hmd one\" Vec3f:position Rotation:rotation, /pose s:Wand _ Vec3f:position "
        "_[], /tracker i:3 Vec3f, /flag T Long:code'");
    Probe<Vec3<float>> head("OSC/pose/Hmd one/position"), wand("OSC/pose/Wand/position"), third("OSC/tracker/3");
    Probe<Rotation> turned("OSC/pose/Hmd one/rotation");
    Probe<long> code("OSC/flag/T/code");
    send(mixedMessage("/pose", "sfffffff", "Hmd one", 1., 2., 3., 0., 0., 0., 1.));
    send(mixedMessage("/pose", "siffffs", "Wand", 7, 4., 5., 6., 1., "more"));
    send(mixedMessage("/tracker", "ffff", 3., 4., 5., 6.)); // numbers are compared as numbers
    send(mixedMessage("/flag", "Ti", 5));
    send(mixedMessage("/tracker", "ifff", 4, 4., 5., 6.));
    send(mixedMessage("/pose", "sfff", "Hmd one", 1., 2., 3.));
    EXPECT_EQ(head.next().getValue(), first);
    EXPECT_EQ(wand.next().getValue(), second);
    EXPECT_EQ(third.next().getValue(), second);
    EXPECT_EQ(turned.next().getValue(), (Rotation{0, 0, 0, 1}));
    EXPECT_EQ(code.next().getValue(), 5);
    awaitCount("in mismatched", 1);
    awaitCount("in unknown", 1);
    EXPECT_EQ(_node->count("in values"), 5U) << "of a message that does not fit nothing is pushed";
    await([&] { return isLogged(log, "/pose s:\"Hmd one\": expected sfffffff, got sfff"); });
    EXPECT_TRUE(isLogged(log, "no slot for /tracker i:4, which comes with (ifff); a guess: in='/tracker i:4 Vec3f' "));
}

TEST_F(OscEntries, AStarMakesSlotsForAddressesThatCome)
{
    const LogCapture log;
    run("listen=127.0.0.1:0 in='/wand/* Vec3f:position Bool:on, /wand/own Float, /a/* Float:b, /a/x/b Float'");
    EXPECT_EQ((*_node)->getRemarks().at(0)._slot, "wand/*/position");
    Probe<Vec3<float>> left("OSC/wand/left/position", 4);
    Probe<bool> on("OSC/wand/left/on", 4);
    send(mixedMessage("/wand/left", "fffT", 1., 2., 3.));
    EXPECT_EQ(left.next().getValue(), first) << "the first message, too";
    EXPECT_TRUE(on.next().getValue());
    EXPECT_TRUE(isLogged(log, "OSC: new slots for /wand/left: 'wand/left/position' (Vec3f), 'wand/left/on' (Bool)"));
    const std::size_t slots = countSlots();
    send(mixedMessage("/wand/right", "ff", 1., 2.));     // does not fit
    send(mixedMessage("/wand/own", "fffT", 1., 2., 3.)); // has an entry of its own
    send(mixedMessage("/wand/a/b", "fffT", 1., 2., 3.)); // more than the star stands for
    send(mixedMessage("/a/x", "f", 1.));                 // its label is another slot's
    awaitCount("in mismatched", 2);
    awaitCount("in unknown", 2);
    EXPECT_EQ(countSlots(), slots);
    EXPECT_TRUE(isLogged(log, "OSC: no slot for /a/x: "));

    _node->stop();
    _node->standAgain();
    EXPECT_EQ(left.next().getValue(), first) << "connected anew, so the last one again";
    send(mixedMessage("/wand/left", "fffF", 4., 5., 6.));
    EXPECT_EQ(left.next().getValue(), second) << "under the same label";
}

TEST_F(OscEntries, AStarMakesABoundedNumberOfSlots)
{
    const LogCapture log;
    run("listen=127.0.0.1:0 in='/* Float'");
    for (std::size_t i = 0; i < MaxOscGrown + 10; ++i)
        send(numbersMessage("/" + std::to_string(i), 'f', {1}));
    awaitCount("in unknown", 10);
    awaitCount("in values", MaxOscGrown);
    EXPECT_EQ(countSlots(), MaxOscGrown);
    EXPECT_TRUE(isLogged(log, "no further one does"));
}

TEST_F(OscEntries, AMessageOfSeveralSlotsGoesWhenTheLastOfThemIsNew)
{
    run("send=" + peerAddress() + " out='/pose s:\"Hmd one\" Vec3f:position i:-1 Float:grip'");
    const auto message = [](const Vec3<float>& at, double grip) {
        return mixedMessage("/pose", "sfffif", "Hmd one", double(at[0]), double(at[1]), double(at[2]), -1, grip);
    };
    Feed<Vec3<float>> position("OSC/pose/Hmd one/-1/position");
    Feed<float> grip("OSC/pose/Hmd one/-1/grip");
    position.push(first);
    position.push(second);
    awaitCount("out replaced", 1);
    grip.push(0.5F);
    EXPECT_EQ(_peer.receive(), message(second, 0.5));
    for (int i = 0; i < 50; ++i) {
        position.push({float(i), 0, 0});
        grip.push(float(i));
    }
    awaitCount("out messages", 51);
    EXPECT_EQ(_node->count("out replaced"), 1U) << "pairs stay pairs, however late the node reads them";
}

TEST_F(OscEntries, WithAFrameEachMessageGoesWithWhatItHas)
{
    run("gather=frame bundle=never send=" + peerAddress() + " out='/pose Float:x Float:y'");
    Feed<float> x("OSC/pose/x"), y("OSC/pose/y");
    x.push(1);
    x.push(2);
    awaitCount("out replaced", 1); // y is not known yet
    y.push(3);
    EXPECT_EQ(_peer.receive(), numbersMessage("/pose", 'f', {2, 3}));
    x.push(4);
    x.push(5);
    EXPECT_EQ(_peer.receive(), numbersMessage("/pose", 'f', {4, 3})) << "a frame has passed without y";
    awaitCount("out messages", 2);
    await([&] {
        _clock.advance(OscSender::MaxFrame);
        return _node->count("out messages") == 3;
    });
    EXPECT_EQ(_peer.receive(), numbersMessage("/pose", 'f', {5, 3})) << "the last value is not lost";
}

TEST(OscEntryList, RefusalsNameTheCharacterAndWhatIsAllowed)
{
    const std::string long256(256, 'x');
    const auto in = [](const std::string& list) { return "listen=9000 in='" + list + "'"; };
    const std::string many = [] {
        std::string list = "/a Float:x";
        for (std::size_t i = 0; i < 64; ++i)
            list += " _";
        return list;
    }();
    const std::string stars = [] {
        std::string list;
        for (int i = 0; i < 17; ++i)
            list += (i == 0 ? "/" : ", /") + std::to_string(i) + "* Float";
        return list;
    }();
    const std::string texts[] = {in("/a s:" + long256 + " Float"), in("/a Float:" + long256), in(many), in(stars)};
    expectRefused(
        std::make_unique<OscNode>(Clock::system()), "listen=0 in='/kept s:\"a, b\" Float:x _[]'",
        {{"listen=9000 in='/b Float, /a i:x Float'", "in the entry '/a i:x Float' at character 14: a slot type"},
         {"listen=9000 in='/ä Float'", "at character 1: an address"},
         {"listen=9000 in='/a s:\"ä\" i:9000000000 Float'", "at character 10: "},
         {"listen=9000 in='/a f:nan Float'", "at character 4: "},
         {"listen=9000 in='/a s:\"open Float'", "at character 4: "},
         {"listen=9000 in='/a s:\"open, /b Float'", "in the entry '/a s:\"open, /b Float' at character 4: "},
         {"listen=9000 in='/a Float:'", "at character 4: "},
         {"listen=9000 in='/a Float:/x'", "at character 4: "},
         {"listen=9000 in='/a i:3'", "at character 7: at least one slot"},
         {"listen=9000 in='/a Float Bool:x'", "a name for each of several slots"},
         {"listen=9000 in='/a Float[] _'", "at character 12: nothing behind"},
         {"listen=9000 in='/a Float:x Bool:x'", "duplicate name '/a/x'"},
         {"listen=9000 in='/a/x Float, /a Float:x'", "duplicate name '/a/x'"},
         {"send=9000 out='/a _ Float'", "at character 4: "},
         {"send=9000 out='/a* Float'", "at character 1: an address"},
         {"listen=9000 in='/a Float:x' send=9001 out='/a/x Float'", "both have /a/x"},
         {texts[0].c_str(), "at character 4: "},
         {texts[1].c_str(), "at character 4: "},
         {texts[2].c_str(), "up to 64 items"},
         {texts[3].c_str(), "up to 16 addresses with '*'"}});
}

} // namespace
} // namespace Trovio::Nodes
