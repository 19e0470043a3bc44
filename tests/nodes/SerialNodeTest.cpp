#include "nodes/serial/SerialNode.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/Pty.h"
#include "tests/support/LogCapture.h"

namespace Trovio::Nodes {
namespace {

/// One node, and a device that can be plugged in and out.
class SerialNodeTest : public ::testing::Test {
protected:
    std::unique_ptr<SerialNode> makeNode()
    {
        return std::make_unique<SerialNode>(_clock, StablePaths(_pty.getFolder()));
    }

    /// With the device plugged in and open.
    void run(const std::string& settings)
    {
        _pty.plugIn();
        _node.emplace(makeNode(), "port=" + _pty.getPath() + " " + settings);
        await([this] { return reason().starts_with("uses "); });
    }

    /// What the node says of its first slot.
    std::string remark() { return (*_node)->getRemarks().at(0)._text; }
    std::string reason() { return (*_node)->getState()._reason; }

    LogCapture _log;
    OpenRoot _root;
    ManualClock _clock;
    Pty _pty;
    std::optional<StandingNode<SerialNode>> _node;
};

TEST_F(SerialNodeTest, TakesLinesByTheirLabelsAndStampsThem)
{
    run("in='temp Float, accel Vec3f, door Bool, count Long, note String, scan Double[]'");
    Probe<float> temp("Serial/temp");
    Probe<Vec3<float>> accel("Serial/accel");
    Probe<bool> door("Serial/door");
    Probe<long> count("Serial/count");
    Probe<std::string> note("Serial/note");
    Probe<SharedVector<double>> scan("Serial/scan");
    _clock.advance(5.0);
    _pty.send("temp 21.5\r\n\r\naccel: 0.1,-0.2,\t9.81\ndoor ON\rcount 9007199254740993\n  note = a  b, c \nscan\n");
    const Data<float> first = temp.next();
    EXPECT_EQ(first.getValue(), 21.5F);
    EXPECT_EQ(first.getTimeStamp(), Time(ManualClock::Epoch + 5.0));
    EXPECT_EQ(accel.next().getValue(), (Vec3<float>{0.1F, -0.2F, 9.81F}));
    EXPECT_TRUE(door.next().getValue());
    EXPECT_EQ(count.next().getValue(), 9007199254740993L);
    EXPECT_EQ(note.next().getValue(), "= a  b, c");
    EXPECT_TRUE(scan.next().getValue()->empty());
}

TEST_F(SerialNodeTest, TakesLinesOfNumbersByTheirPlaceAndNoRestOfALine)
{
    run("lines=numbers in='temp Float, accel Vec3f'");
    Probe<float> temp("Serial/temp");
    Probe<Vec3<float>> accel("Serial/accel");
    _pty.send("1.5 1 2 3\n1.5 1 2\n21.5,4;5\t6\n");
    EXPECT_EQ(temp.next().getValue(), 21.5F);
    EXPECT_EQ(accel.next().getValue(), (Vec3<float>{4, 5, 6}));
    EXPECT_EQ(_node->count("in malformed"), 1U);
    EXPECT_TRUE(says(_log.texts().back(), "malformed line: '1.5 1 2' instead of 4 numbers"));
}

TEST_F(SerialNodeTest, WritesLinesInOrderAndNoneThatItCouldNotRead)
{
    run("end=crlf out='led Vec3f, note String'");
    Feed<Vec3<float>> led("Serial/led");
    Feed<std::string> note("Serial/note");
    led.push({0.1F, -1e-7F, std::numeric_limits<float>::infinity()});
    led.push({0.1F, -1e-7F, 3.0F});
    EXPECT_EQ(_pty.receiveLine(), "led 0.1 -1e-07 3\r\n");
    note.push("two\nlines");
    note.push("one line");
    EXPECT_EQ(_pty.receiveLine(), "note one line\r\n");
    _node->awaitCount("out lines", 2);
    EXPECT_EQ(_node->count("out failed"), 2U);
}

TEST_F(SerialNodeTest, ADeviceThatTakesNothingHoldsUpNobodyAndGetsTheNewest)
{
    run("queue=16 out='count Long'");
    Feed<long> feed("Serial/count");
    constexpr long last = 5'000;
    for (long i = 1; i <= last; ++i)
        feed.push(i);
    long count = 0, lines = 0;
    for (; count < last; ++lines) {
        const long next = std::stol(_pty.receiveLine().substr(6));
        EXPECT_GT(next, std::exchange(count, next));
    }
    EXPECT_LT(lines, last);
    _node->awaitCount("out lines", static_cast<std::uint64_t>(lines));
}

TEST_F(SerialNodeTest, UnpluggedItSaysSoAndRunsAgainUnderTheSameLabels)
{
    run("in='temp Float' out='led Float'");
    const std::string path = _pty.getPath();
    for (int round = 0; round < 3; ++round) {
        _pty.unplug();
        await([this] { return reason().ends_with("it was unplugged"); });
        EXPECT_EQ(reason(), "lost '" + path + "': it was unplugged");
        _clock.advance(1.0);
        await([this] { return reason().starts_with("there is no"); });
        EXPECT_EQ(reason(), "there is no '" + path + "'; nothing stands in " + _pty.getFolder());
        _pty.plugIn();
        _clock.advance(1.0);
        const std::string again = "node 'Serial' runs again, uses '" + path + "' at 115200 baud";
        await([&] { return _log.texts().back().starts_with(again); });
        Probe<float> temp("Serial/temp");
        Feed<float> led("Serial/led");
        _pty.send("temp 3\n");
        EXPECT_EQ(temp.next().getValue(), 3.0F);
        led.push(0.5F);
        EXPECT_EQ(_pty.receiveLine(), "led 0.5\n");
    }
}

TEST_F(SerialNodeTest, MalformedLinesChangeOnlyCounters)
{
    run("in='temp Float, accel Vec3f'");
    const std::string malformed[] = {"temp\n",     "temp warm\n", "accel 1 2\n", "temp 1e99 2\n",
                                     "temp nan\n", "tmep 1\n",    "\x01\xff\n",  std::string(5000, '7') + "\n"};
    constexpr std::uint64_t lines = 10'000;
    for (std::uint64_t i = 0; i < lines; ++i)
        _pty.send(malformed[i % std::size(malformed)]);
    _node->awaitCount("in lines", lines);
    EXPECT_EQ(_node->count("in refused"), lines / 8 * 5);
    EXPECT_EQ(_node->count("in unknown"), lines / 8);
    EXPECT_EQ(_node->count("in malformed"), lines / 4);
    EXPECT_EQ(_node->count("in values"), 0U);
    EXPECT_FALSE((*_node)->getState()._degraded);
    EXPECT_LT(_log.texts().size(), 16U);
    EXPECT_TRUE(says(remark(), "5000 came that are no value, the last 'nan', wanted a number"));
    Probe<float> temp("Serial/temp");
    _pty.send("temp 1\n");
    EXPECT_EQ(temp.next().getValue(), 1.0F);
}

TEST_F(SerialNodeTest, SaysWhyNothingCameAndWhichEntryWouldTakeWhatDoes)
{
    run("in='accel Vec3f'");
    std::filesystem::create_symlink(std::filesystem::canonical(_pty.getPath()), _pty.getFolder() + "/usb-maker-board");
    _pty.send("acel 1 2 3\nacel 1 2 3\n");
    _node->awaitCount("in unknown", 2);
    EXPECT_EQ(remark(), "has '" + _pty.getPath() + "' at 115200 baud; 2 lines came, none for accel, 2 for 'acel'");
    EXPECT_TRUE(says(_log.texts().back(), "Serial: no slot for the label 'acel'; in='acel Vec3f' would take it; the "
                                          "nearest label with a slot is 'accel'"));
    EXPECT_EQ(StablePaths(_pty.getFolder()).find(_pty.getPath()), _pty.getFolder() + "/usb-maker-board");
}

TEST_F(SerialNodeTest, RefusesSettingsThatCannotWork)
{
    const std::initializer_list<std::pair<const char*, const char*>> bad = {
        {"port=/dev/null", "unless 'out' has one"},
        {"port=/dev/null in='a: Float'", "a label: up to 255"},
        {"port=/dev/null in='a Image'", "but a is of Image"},
        {"port=/dev/null in='a Float' out='a Float'", "both have a"},
        {"port=/dev/null in='a Float' baud=115201", "nearest: '115200'"},
        {"port=/dev/null in='a Float, b Float[]' lines=numbers", "or one array"},
        {"port=/dev/null out='a Float, b Float' lines=numbers", "one entry of numbers"}};
    expectRefused(makeNode(), "port=/dev/null in='good Float'", bad);
    _node.emplace(makeNode(), "port=/dev/null in='a Float'");
    await([this] { return (*_node)->getState()._degraded; });
    EXPECT_EQ(reason(), "'/dev/null' is no serial device");
}

} // namespace
} // namespace Trovio::Nodes
