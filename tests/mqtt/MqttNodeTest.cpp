#include "nodes/mqtt/MqttNode.h"
#include "tests/mqtt/Broker.h"
#include "tests/nodes/ManualClock.h"
#include "tests/nodes/NodeFixture.h"
#include "tests/support/LogCapture.h"

namespace Trovio::Nodes {
namespace {

/// Nodes on a clock that is moved by hand, and a broker between them.
class MqttNodeTest : public ::testing::Test {
protected:
    using Standing = StandingNode<MqttNode>;

    std::string settings(const std::string& others) { return "broker=" + _broker.getAddress() + " " + others; }
    std::unique_ptr<Standing> stand(const std::string& others)
    {
        return std::make_unique<Standing>(std::make_unique<MqttNode>(_clock), settings(others));
    }
    /// Returns once it is connected and the broker knows what it wants to hear.
    std::unique_ptr<Standing> connect(const std::string& others)
    {
        auto node = stand(others + " status=ready/" + std::to_string(++_nodes));
        awaitReason(*node, "connected");
        node->awaitCount("out messages", 1);
        return node;
    }

    void awaitReason(Standing& node, const std::string& begin)
    {
        await([&] { return node->getState()._reason.starts_with(begin); });
    }

    LogCapture _log;
    OpenRoot _root;
    ManualClock _clock;
    Broker _broker;
    int _nodes = 0;
};

// One version speaks to the other, and texts show what travels.
TEST_F(MqttNodeTest, CarriesValuesAndTheirFormBothWays)
{
    _broker.start();
    for (const char* quality : {"0", "1", "2"}) {
        const std::string common = std::string(" qos=") + quality;
        const auto in = connect("label=in version=5 in='a/pos Vec3f, a/cmd String, a/cmd#/on Bool'" + common);
        const auto out = connect("label=out vectors=object out='a/pos Vec3f, a/cmd#/on Bool'" + common);
        Probe<Vec3<float>> position("in/a/pos");
        Probe<bool> on("in/a/cmd/on");
        Probe<std::string> command("in/a/cmd");
        Feed<Vec3<float>>("out/a/pos").push({0.1F, 2, 3});
        Feed<bool>("out/a/cmd/on").push(true);
        const auto record = position.next();
        EXPECT_EQ(record.getValue(), (Vec3<float>{0.1F, 2, 3}));
        EXPECT_EQ(record.getTimeStamp(), Time(ManualClock::Epoch));
        EXPECT_TRUE(on.next().getValue());
        EXPECT_EQ(command.next().getValue(), "{\"on\":true}");
        out->awaitCount("out messages", 3);
    }
}

TEST_F(MqttNodeTest, TheBrokerKeepsTheLastValueForWhoComesLater)
{
    _broker.start();
    const auto out = connect("label=out qos=1 retain=true out='a Float'");
    Feed<float> feed("out/a");
    feed.push(1);
    feed.push(2);
    out->awaitCount("out messages", 3);
    const auto in = stand("label=in in='a Float'"), fresh = stand("label=fresh in='a Float' retained=skip");
    Probe<float> probe("in/a"), later("fresh/a");
    EXPECT_EQ(probe.next().getValue(), 2.0F);
    fresh->awaitCount("in skipped", 1);
    feed.push(3);
    EXPECT_EQ(probe.next().getValue(), 3.0F);
    EXPECT_EQ(later.next().getValue(), 3.0F);
}

TEST_F(MqttNodeTest, TheStatusTellsOfAnEndThatNobodyCouldAnnounce)
{
    _broker.start();
    const auto watch = connect("label=watch in='stage/$status String, other/$status Bool'");
    Probe<std::string> status("watch/stage/$status");
    Probe<bool> other("watch/other/$status");
    auto node = stand("label=node out='a Float' status=stage/$status");
    EXPECT_EQ(status.next().getValue(), "online");
    node.reset();
    EXPECT_EQ(status.next().getValue(), "offline");

    // One that is cut off, instead of stopped.
    struct Nobody final : MqttListener {
        void messageArrived(std::string_view, std::string_view, bool) noexcept override {}
        void messageSent() noexcept override {}
        void subscriptionRefused(const std::string&, const std::string&) noexcept override {}
    } nobody;
    MqttConnection connection;
    connection._statusTopic = "other/$status";
    {
        MqttClient client(connection, nobody);
        ASSERT_EQ(client.begin("127.0.0.1", _broker.getPort()), "");
        await([&client] { return client.work().empty() && client.isAccepted(); });
    }
    EXPECT_FALSE(other.next().getValue());
}

TEST_F(MqttNodeTest, AKilledBrokerIsToldAndThatItIsBack)
{
    const auto in = stand("label=in in='a Float'"), out = stand("label=out qos=1 out='a Float' status=out");
    Probe<float> probe("in/a");
    Feed<float> feed("out/a");
    const std::string refused = "cannot connect to the broker at " + _broker.getAddress() + ": Connection refused";
    awaitReason(*in, refused);
    awaitReason(*out, refused);
    EXPECT_EQ((*in)->getRemarks().at(0)._text, refused + "; no messages came");
    for (int round = 0; round < 3; ++round) {
        feed.push(static_cast<float>(round)); // waits for the broker
        _broker.start();
        const auto before = in->count("in messages");
        _clock.advance(2.0);
        awaitReason(*in, "connected to the broker at " + _broker.getAddress());
        awaitReason(*out, "connected");
        await([&] {
            feed.push(10.0F);
            std::this_thread::yield();
            return in->count("in messages") != before;
        });
        EXPECT_GE(probe.next().getValue(), static_cast<float>(round));
        _broker.kill();
        awaitReason(*in, "lost the broker at " + _broker.getAddress() + ": ");
        awaitReason(*out, "lost the broker");
    }
    const auto texts = _log.texts();
    EXPECT_EQ(std::ranges::count_if(
                  texts, [](const std::string& text) { return text.starts_with("node 'in' runs again, connected"); }),
              3);
}

TEST_F(MqttNodeTest, EncryptsAndLogsInAndSaysWhatIsWrongWithEither)
{
    HostProcess certificate("openssl", {"req", "-x509", "-newkey", "ec", "-pkeyopt", "ec_paramgen_curve:prime256v1",
                                        "-nodes", "-subj", "/CN=127.0.0.1", "-addext", "subjectAltName=IP:127.0.0.1",
                                        "-keyout", _broker.path("key.pem"), "-out", _broker.path("cert.pem")});
    ASSERT_EQ(certificate.wait(), 0) << certificate.err();
    HostProcess passwords("mosquitto_passwd", {"-c", "-b", _broker.path("users"), "stage", "secret"});
    ASSERT_EQ(passwords.wait(), 0) << passwords.err();
    _broker.start("password_file " + _broker.path("users") + "\ncertfile " + _broker.path("cert.pem") + "\nkeyfile " +
                  _broker.path("key.pem") + "\n");
    const std::string out = "out='a Float' ", tls = out + "tls=true cafile=" + _broker.path("cert.pem");
    const std::string logIn = tls + " user=stage passwordfile=" + _broker.path("password");

    const auto plain = stand(out + "label=plain"), unknown = stand(out + "label=unknown tls=true");
    awaitReason(*plain, "cannot connect to the broker at");
    awaitReason(*unknown, "cannot connect to the broker at");
    EXPECT_TRUE(says((*unknown)->getState()._reason, "signed by one in 'cafile'"));
    const auto node = stand(logIn);
    const std::pair<const char*, const char*> rows[] = {
        {nullptr, "cannot be read: No such file or directory"},
        {"\n", "has no password of 1 to 1024 bytes in its first line"},
        {"wrong\n", "not authorised; see 'user' and 'passwordfile'"},
        {"secret\nmore\n", "connected to the broker at"},
    };
    for (const auto& [text, expected] : rows) {
        if (text)
            _broker.write("password", text);
        _clock.advance(2.0);
        await([&, part = expected] { return (*node)->getState()._reason.find(part) != std::string::npos; });
    }
    EXPECT_FALSE((*node)->getState()._degraded);
}

TEST_F(MqttNodeTest, MalformedPayloadsChangeOnlyCounters)
{
    _broker.start("allow_anonymous true\nmax_queued_messages 0\n");
    // On a busy machine the broker's sign of life may wait behind the flood for longer than the usual keepalive.
    const auto in = connect("label=in keepalive=3600 in='a Float, a#/x Vec3f'");
    const auto out = connect("label=out keepalive=3600 queue=65536 qos=1 out='a String'");
    Feed<std::string> feed("out/a");
    const std::string malformed[] = {"",         "warm",          "{\"x\": [1, 2]}", "{\"x\":", "[nan, 1, 2]",
                                     "\xff\xfe", "{\"x\": null}", "[1, 2]",          "{}",      std::string(5000, '[')};
    constexpr std::uint64_t messages = 10'000;
    for (std::uint64_t i = 0; i < messages; ++i)
        feed.push(malformed[i % std::size(malformed)]);
    in->awaitCount("in refused", 2 * messages);
    EXPECT_EQ(in->count("in messages"), messages);
    EXPECT_EQ(in->count("in values"), 0U);
    EXPECT_FALSE((*in)->getState()._degraded);
    EXPECT_LT(_log.texts().size(), 20U);
    EXPECT_EQ((*in)->getRemarks().at(0)._text, "connected to the broker at " + _broker.getAddress() +
                                                   "; 10000 came that are no value, the last '" + std::string(60, '[') +
                                                   "…', wanted a number");
    Probe<float> probe("in/a");
    feed.push("7");
    EXPECT_EQ(probe.next().getValue(), 7.0F);
}

TEST_F(MqttNodeTest, RefusesSettingsThatCannotWork)
{
    const std::initializer_list<std::pair<const char*, const char*>> bad = {
        {"", "unless 'out' has one"},
        {"in='a/+ Float'", "a topic: up to 255"},
        {"in='a#b Float'", "# and a JSON pointer"},
        {"in='a#/b Float, a/b Float'", "duplicate label 'a/b'"},
        {"in='a Image'", "but a is of Image"},
        {"in='a#/b Float' out='a/b Float'", "both have a/b"},
        {"in='a Float' broker=host:0", "a port from 1 to 65535"},
        {"in='a Float' cafile=a.pem", "unless tls=true"},
        {"in='a Float' tls=true keyfile=a.pem", "belong together"},
        {"in='a Float' passwordfile=a", "since there is a 'passwordfile'"},
        {"in='a Float' status=a/#", "a topic without wildcards"}};
    expectRefused(std::make_unique<MqttNode>(_clock), "in='good Float'", bad);
}

} // namespace
} // namespace Trovio::Nodes
