#include "explain/text/JsonText.h"
#include "tests/monitor/AllValues.h"
#include "tests/monitor/ServerBench.h"
#include "tests/monitor/WebSocketClient.h"
#include "trovio/InSlot.h"

#include <limits>

namespace {

using namespace Monitor;
using namespace std::chrono_literals;
using Json = nlohmann::json;

constexpr const char* foxglove = "foxglove.websocket.v1";
constexpr std::size_t plenty = 100'000; // records of which a client's queue holds a part

// An out-slot of the root, as a node's would be.
template <class T = double>
struct Source {
    explicit Source(std::string label) : _label(std::move(label)) { Trovio::Root::get().addOutSlot(_label, &_slot); }
    ~Source() { Trovio::Root::get().removeSlot(_label); }
    void push(T value) { _slot.push(Trovio::Data<T>(value, Trovio::Time(double(value)))); }

    const std::string _label;
    Trovio::OutSlot<T> _slot{"test"};
};

class Subprotocol : public ::testing::TestWithParam<const char*> {};

TEST_P(Subprotocol, ServesChannelsMessagesAndTheirEnd)
{
    ServerBench bench;
    auto wand = std::make_unique<Source<>>("Wand/x");
    WebSocketClient client(bench, GetParam());
    EXPECT_EQ(client.protocol(), GetParam());
    const Json info = client.nextJson(), offered = client.nextJson();
    EXPECT_EQ(info["op"], "serverInfo");
    EXPECT_EQ(info["capabilities"], Json({"clientPublish"})); // of the Unix socket
    ASSERT_EQ(offered["channels"].size(), 1);
    const Json channel = offered["channels"][0];
    EXPECT_EQ(channel["topic"], "Wand/x");
    EXPECT_EQ(channel["encoding"], "cdr");
    EXPECT_EQ(channel["schemaName"], "std_msgs/msg/Float64");
    EXPECT_EQ(channel["schemaEncoding"], "ros2msg");

    client.say({{"op", "subscribe"}, {"subscriptions", {{{"id", 7}, {"channelId", channel["id"]}}}}});
    wand->push(1.5);
    bench.round();
    const std::string message = client.nextBinary();
    ASSERT_EQ(message.size(), 13 + encoded(1.5).size());
    EXPECT_EQ(message.substr(0, 5), std::string("\1\7\0\0\0", 5));
    EXPECT_EQ(std::memcmp(message.data() + 13, encoded(1.5).data(), encoded(1.5).size()), 0);

    wand.reset();
    bench.pass(2s);
    EXPECT_EQ(client.nextJson(), (Json{{"op", "unadvertise"}, {"channelIds", {channel["id"]}}}));
    Source another("Wand/x"); // a slot that comes gets a number of its own
    bench.pass(2s);
    EXPECT_NE(client.nextJson()["channels"][0]["id"], channel["id"]);
    client.say({{"op", "unsubscribe"}, {"subscriptionIds", {7}}}); // viewers do; nothing is said
    client.say({{"op", "getParameters"}});
    EXPECT_EQ(client.nextJson()["level"], 2);
}
INSTANTIATE_TEST_SUITE_P(Foxglove, Subprotocol, ::testing::Values("foxglove.websocket.v1", "foxglove.sdk.v1"),
                         [](const auto& row) { return std::string(row.param).substr(9, 3); });

TEST(Stream, RecordsOfAnotherTypeDoNotGoOutOnTheChannelOfTheFirst)
{
    ServerBench bench;
    auto wand = std::make_unique<Source<>>("Wand/x");
    WebSocketClient client(bench, foxglove);
    client.nextJson();
    client.nextJson();
    client.say({{"op", "subscribe"}, {"subscriptions", {{{"id", 7}, {"channelId", 1}}}}});
    client.say({{"op", "nothing"}});
    client.nextJson(); // so that the wish has been read
    wand.reset();
    Source<float> another("Wand/x");
    another.push(2);
    bench.round(); // sees the other type
    bench.round();
    EXPECT_EQ(client.nextJson()["id"], "dropped");
}

struct Wrong {
    const char* _name;
    Json _message;
    const char* _says;
};
class WrongMessage : public ::testing::TestWithParam<Wrong> {};

TEST_P(WrongMessage, IsNamedAndTheRestIsServed)
{
    ServerBench bench;
    Source wand("Wand/x");
    WebSocketClient client(bench, foxglove);
    client.nextJson();
    client.nextJson();
    client.say({{"op", "subscribe"}, {"subscriptions", {{{"id", 1}, {"channelId", 1}}}}});
    client.say(GetParam()._message);
    const Json status = client.nextJson();
    EXPECT_EQ(status["op"], "status");
    EXPECT_EQ(status["level"], 2);
    EXPECT_NE(status["message"].get<std::string>().find(GetParam()._says), std::string::npos) << status;
    wand.push(2);
    bench.round();
    EXPECT_FALSE(client.nextBinary().empty());
}
INSTANTIATE_TEST_SUITE_P(
    Foxglove, WrongMessage,
    ::testing::Values(
        Wrong{"NumberTaken", {{"op", "subscribe"}, {"subscriptions", {{{"id", 1}, {"channelId", 1}}}}}, "another one"},
        Wrong{"ChannelTaken", {{"op", "subscribe"}, {"subscriptions", {{{"id", 2}, {"channelId", 1}}}}}, "'Wand/x'"},
        Wrong{"NoChannel", {{"op", "subscribe"}, {"subscriptions", {{{"id", 2}, {"channelId", 9}}}}}, "channel 9"},
        Wrong{"NegativeNumber", {{"op", "subscribe"}, {"subscriptions", {{{"id", -1}, {"channelId", 1}}}}}, "32 bits"},
        Wrong{"NoList", {{"op", "subscribe"}}, "'subscriptions'"},
        Wrong{
            "LongTopic",
            {{"op", "advertise"}, {"channels", {{{"id", 1}, {"topic", std::string(1025, 'a')}, {"encoding", "json"}}}}},
            "1024 bytes"},
        Wrong{"NoOp", {{"hello", 1}}, "''"},
        Wrong{"Encoding",
              {{"op", "advertise"}, {"channels", {{{"id", 1}, {"topic", "a"}, {"encoding", "ros1"}}}}},
              "allowed: cdr, json"}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(Stream, OffersSlotsAsTheRootSeesThem)
{
    ServerBench bench;
    Trovio::OutSlot<double> renamed("renamed"), hidden("hidden");
    auto box = std::make_unique<Trovio::Namespace>();
    box->addOutSlot("value", &renamed);
    box->addOutSlot("hidden", &hidden);
    box->addExternalRoute("value", "Renamed");
    Trovio::Root::get().addNamespace("Box", std::move(box));
    Source star("Any/*");
    WebSocketClient client(bench, foxglove);
    client.nextJson();
    const Json channels = client.nextJson()["channels"];
    ASSERT_EQ(channels.size(), 2U) << channels;
    EXPECT_EQ(channels[0]["topic"], "Any/*");
    EXPECT_EQ(channels[1]["topic"], "Renamed");
    for (const Json& channel : channels)
        client.say({{"op", "subscribe"}, {"subscriptions", {{{"id", channel["id"]}, {"channelId", channel["id"]}}}}});
    EXPECT_NE(client.nextJson()["message"].get<std::string>().find("'Any/*' cannot be looked at"), std::string::npos);
    renamed.push(Trovio::Data(2.5));
    star.push(1);
    bench.round();
    EXPECT_EQ(client.nextBinary().substr(13), std::string(reinterpret_cast<const char*>(encoded(2.5).data()), 12));
    Trovio::Root::get().removeNamespace("Box");
}

TEST(Stream, PosesOfAllSlotsAreOneChannel)
{
    ServerBench bench;
    using Matrix = Trovio::Matrix4<double>;
    Trovio::OutSlot<Matrix> place("test"), other("test");
    Trovio::Root::get().addOutSlot("Place", &place);
    place.push(Trovio::Data(Matrix()));
    WebSocketClient first(bench, foxglove), second(bench, foxglove);
    const auto subscribe = [&bench](WebSocketClient& client) {
        client.nextJson();
        const Json channel = client.nextJson()["channels"][0];
        EXPECT_EQ(channel["topic"], "/tf");
        EXPECT_EQ(channel["schemaName"], "tf2_msgs/msg/TFMessage");
        client.say({{"op", "subscribe"}, {"subscriptions", {{{"id", 4}, {"channelId", channel["id"]}}}}});
        bench.round();
        EXPECT_EQ(client.nextBinary()[13 + 4], 1) << "what stands still has a pose, too";
    };
    subscribe(first);
    subscribe(second);
    Trovio::Root::get().addOutSlot("Other", &other);
    bench.pass(2s); // the slot is seen
    for (WebSocketClient* const client : {&first, &second})
        EXPECT_EQ(client->nextJson()["channels"][0]["topic"], "Other");
    other.push(Trovio::Data(Matrix()));
    other.push(Trovio::Data(filled<Matrix>(0)));
    place.push(Trovio::Data(Matrix()));
    bench.round();
    for (WebSocketClient* const client : {&first, &second}) {
        EXPECT_EQ(client->nextJson()["message"], "no pose of 'Other': the matrix does more than turn and move");
        EXPECT_EQ(client->nextBinary()[13 + 4], 2) << "poses in one message";
    }
    first.say({{"op", "unsubscribe"}, {"subscriptionIds", {4}}});
    second.say({{"op", "unsubscribe"}, {"subscriptionIds", {4}}});
    bench.round();
    EXPECT_FALSE(place.isActive());
    Trovio::Root::get().removeSlot("Place");
    Trovio::Root::get().removeSlot("Other");
}

TEST(Stream, PublishedMessagesReachTheSlotAndOthersAreNamed)
{
    constexpr std::uint64_t burst = 100; // more than may wait
    ServerBench bench;
    Trovio::InSlot<double> lamp("test");
    Trovio::Root::get().addInSlot("Lamp", &lamp);
    WebSocketClient client(bench, foxglove);
    client.nextJson();
    client.nextJson();
    const auto channel = [](int number, const char* topic, const char* encoding, const char* schema) {
        return Json{{"id", number}, {"topic", topic}, {"encoding", encoding}, {"schemaName", schema}};
    };
    constexpr const char *number = "std_msgs/msg/Float64", *point = "geometry_msgs/msg/Point";
    client.say({{"op", "advertise"},
                {"channels",
                 {0, channel(1, "Lamp", "cdr", number), channel(2, "Lamp", "json", number),
                  channel(3, "Nowhere", "cdr", number), channel(4, "Lamp", "cdr", point)}}});
    const auto says = [&client] { return client.nextJson()["message"].get<std::string>(); };
    EXPECT_TRUE(says().starts_with("'0' is no entry")); // the others are taken
    const auto publish = [&client](char to, const std::string& message) {
        client.sendBinary(std::string{'\1', to, '\0', '\0', '\0'} + message);
    };
    const auto cdr = [](double value) {
        const Bytes bytes = encoded(value);
        return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    };
    // They are answered in turn: when the last one is, so are those before.
    publish(1, cdr(std::numeric_limits<double>::infinity()));
    publish(3, cdr(1));
    EXPECT_TRUE(says().starts_with("no slot has the label 'Nowhere'"));
    EXPECT_EQ(lamp.pop().getValue(), std::numeric_limits<double>::infinity());
    for (std::uint64_t i = 0; i < burst; ++i)
        publish(2, R"({"data":0.5})");
    publish(4, cdr(1));
    EXPECT_NE(says().find("messages of std_msgs/msg/Float64, and not of geometry_msgs/msg/Point"), std::string::npos);
    EXPECT_EQ(lamp.pop().getValue(), 0.5);
    EXPECT_EQ(lamp.getCounts().stored, 1 + burst);
    Trovio::Root::get().removeSlot("Lamp");
}

TEST(Stream, ClientThatStopsReadingIsToldWhatItLostAndHoldsUpNobody)
{
    ServerBench bench;
    Source wand("Wand/x");
    WebSocketClient stuck(bench, foxglove), reader(bench, foxglove);
    for (WebSocketClient* const client : {&stuck, &reader}) {
        client->nextJson();
        client->nextJson();
        client->say({{"op", "subscribe"}, {"subscriptions", {{{"id", 1}, {"channelId", 1}}}}});
    }
    for (std::size_t i = 0; i < plenty; ++i) {
        wand.push(static_cast<double>(i));
        if (i % 500 != 499)
            continue;
        bench.round();
        for (int k = 0; k < 500; ++k)
            ASSERT_FALSE(reader.nextBinary().empty()); // every one, at once
    }
    std::uint64_t got = 0, dropped = 0;
    bench.pass(0s);
    while (got + dropped < plenty) {
        const std::string message = stuck.next();
        ASSERT_FALSE(message.empty()) << got << " and " << dropped;
        if (message[0] == 1) {
            ++got;
            continue;
        }
        const std::string text = Json::parse(message)["message"];
        ASSERT_TRUE(text.starts_with("Send buffer limit reached")) << text;
        dropped = std::stoull(text.substr(text.find(':') + 1));
        for (int k = 0; k < 70 && got + dropped < plenty; ++k)
            bench.round(); // the next word about it comes within a second
    }
    EXPECT_EQ(got + dropped, plenty);
    EXPECT_LT(got, plenty / 2 + 20'000); // what the queue and the socket hold
}

TEST(Stream, BatchHoldsAllRecordsOfARound)
{
    ServerBench bench;
    Source wand("Wand/x"), other("Wand/y");
    WebSocketClient client(bench, "ostrel.batch.v1");
    client.say({{"op", "subscribe"}, {"labels", {"Wand/x", "Wand/z", "Wand/y", "Wand/x"}}});
    EXPECT_EQ(client.nextJson()["label"], "Wand/z");
    const Json slots = client.nextJson()["slots"];
    EXPECT_EQ(slots, (Json{{{"id", 1}, {"label", "Wand/x"}}, {{"id", 3}, {"label", "Wand/y"}}}));
    wand.push(1);
    other.push(2);
    wand.push(3);
    bench.round();
    const Json batch = client.nextJson();
    ASSERT_EQ(batch["records"].size(), 3);
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(batch["records"][i][0], i == 1 ? 3 : 1);
        EXPECT_EQ(batch["records"][i][2], i + 1);
        EXPECT_EQ(batch["records"][i][3], i + 1);
    }
    EXPECT_EQ(batch["dropped"], 0);
}

TEST(Stream, RoundsComeAsSlowlyAsEachClientAllowsAndTapsCanBear)
{
    ServerBench bench;
    Source wand("Wand/x");
    Source<Trovio::SharedVector<float>> path("Path");
    WebSocketClient page(bench, "ostrel.batch.v1");
    const auto subscribe = [&page](const char* op, const char* label) { page.say({{"op", op}, {"labels", {label}}}); };
    page.say({{"op", "pace"}, {"milliseconds", 50}});
    subscribe("subscribe", "Wand/x");
    page.nextJson();
    EXPECT_EQ(bench.pace(), 16ms) << "the newest record is waited for";
    bench.round();
    EXPECT_EQ(bench.pace(), 50ms);
    for (const Json& wrong : {Json(15), Json(101), Json(-50), Json("50"), Json()}) {
        page.say({{"op", "pace"}, {"milliseconds", wrong}});
        EXPECT_NE(page.nextJson()["message"].get<std::string>().find("from 16 to 100"), std::string::npos) << wrong;
    }
    for (int i = 0; i < 400; ++i) // a good part of the tap
        wand.push(1);
    bench.round();
    EXPECT_EQ(bench.pace(), 16ms) << "more of that would find no room";
    bench.round();
    EXPECT_EQ(bench.pace(), 50ms);
    page.nextJson();
    subscribe("subscribe", "Path");
    page.nextJson();
    bench.round();
    EXPECT_EQ(bench.pace(), 16ms) << "few arrays find room";
    subscribe("unsubscribe", "Path");
    subscribe("nothing", "so that the wish has been read");
    page.nextJson();
    bench.round();
    EXPECT_EQ(bench.pace(), 50ms);
    WebSocketClient other(bench, "ostrel.batch.v1");
    other.say({{"op", "subscribe"}, {"labels", {"Wand/x"}}});
    other.nextJson();
    EXPECT_EQ(bench.pace(), 16ms) << "somebody did not ask for less";
}

TEST(Stream, WhatTheTapCouldNotKeepIsMissingForThoseWhoWereThere)
{
    ServerBench bench;
    Source wand("Wand/x");
    WebSocketClient first(bench, "ostrel.batch.v1"), second(bench, "ostrel.batch.v1");
    const Json wish{{"op", "subscribe"}, {"labels", {"Wand/x"}}};
    first.say(wish);
    first.nextJson();
    for (std::size_t i = 0; i < plenty; ++i)
        wand.push(1);
    second.say(wish);
    second.nextJson();
    bench.round();
    const Json gap = first.nextJson();
    EXPECT_GT(gap["dropped"], 0);
    EXPECT_EQ(gap["gaps"], (Json{{1, gap["dropped"]}}));
    EXPECT_EQ(second.nextJson()["dropped"], 0);

    first.nextJson();
    for (std::size_t i = 0; i < plenty; ++i)
        wand.push(1);
    bench.round();
    EXPECT_FALSE(second.nextJson()["records"].empty()); // those that found room are older than the missing ones
    const Json later = second.nextJson();
    EXPECT_EQ(later["gaps"], (Json{{1, later["dropped"]}}));
}

TEST(Stream, LinesEndAfterSoMany)
{
    ServerBench bench;
    Source wand("Wand/x");
    wand.push(0.25); // the last value comes at once
    BenchClient client(bench);
    client.send("GET /stream?label=Wand%2Fx&n=2 HTTP/1.1\r\nHost: h\r\n\r\n");
    ASSERT_TRUE(client.waitFor("\r\n\r\n"));
    bench.round();
    wand.push(4);
    wand.push(5);
    bench.round();
    const std::string all = client.readAll();
    EXPECT_NE(all.find("\"stamp\":0.25,\"value\":0.25}\n"), all.npos) << all;
    EXPECT_NE(all.find("\"value\":4"), all.npos);
    EXPECT_EQ(all.find("\"value\":5"), all.npos);
    EXPECT_TRUE(all.ends_with("\r\n0\r\n\r\n"));
}

TEST(Stream, LinesTellAGapInItsPlaceAndDoNotCountWhatIsMissing)
{
    constexpr std::uint64_t most = 60'000; // more than the queue holds
    ServerBench bench;
    Source wand("Wand/x");
    BenchClient client(bench);
    client.send("GET /stream?label=Wand/x&n=" + std::to_string(most) + " HTTP/1.1\r\nHost: h\r\n\r\n");
    ASSERT_TRUE(client.waitFor("\r\n\r\n"));
    std::uint64_t pushed = 0, got = 0, missing = 0, gaps = 0;
    const auto pushSome = [&] {
        for (int i = 0; i < 500; ++i)
            wand.push(static_cast<double>(pushed++));
        bench.round();
    };
    while (pushed < plenty)
        pushSome();
    for (std::string line = "-"; !line.empty(); line = client.takeUpTo("\n")) {
        if (line.starts_with("{\"dropped\":")) {
            missing += Json::parse(line)["dropped"].get<std::uint64_t>();
            ++gaps;
        } else if (line.starts_with("{")) {
            ASSERT_EQ(Json::parse(line)["value"], got + missing);
            if (++got % 100 == 0) // the client reads, but more comes than it takes
                pushSome();
        }
    }
    EXPECT_EQ(got, most);
    EXPECT_GT(gaps, 1U);
}

TEST(Stream, LinesOfNoSlotAreRefused)
{
    ServerBench bench;
    Source wand("Wand/x");
    BenchClient client(bench);
    client.send("GET /stream?label=Wand/q HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_TRUE(client.waitFor("Wand/x")); // the nearest
    client.send("GET /stream?label=Wand/x&n=0 HTTP/1.1\r\nHost: h\r\n\r\n");
    EXPECT_TRUE(client.waitFor("400 Bad Request"));
}

TEST(Stream, LinesOfTwoSourcesWithOneLabelComeOnce)
{
    ServerBench bench;
    Trovio::OutSlot<double> inBox("value");
    auto box = std::make_unique<Trovio::Namespace>();
    box->addOutSlot("value", &inBox);
    box->addExternalRoute("value", "Same");
    Trovio::Root::get().addNamespace("Box", std::move(box));
    Source same("Same");
    Trovio::InSlot<double> in("in");
    Trovio::Root::get().addInSlot("In", &in);
    Trovio::Root::get().addRoute("Same", "In");
    WebSocketClient other(bench, "ostrel.batch.v1");
    other.say({{"op", "subscribe"}, {"labels", {"Same"}}});
    {
        BenchClient client(bench);
        client.send("GET /stream?label=In&n=2 HTTP/1.1\r\nHost: h\r\n\r\n");
        ASSERT_TRUE(client.waitFor("\r\n\r\n"));
        same.push(1);
        bench.round();
        same.push(2);
        bench.round();
        const std::string all = client.readAll();
        EXPECT_NE(all.find("\"value\":2.0"), all.npos) << all; // the second one, not the first one again
    }
    same.push(3); // nobody hands it to the one that has gone
    bench.round();
    Trovio::Root::get().removeSlot("In");
    Trovio::Root::get().removeNamespace("Box");
}
} // namespace
