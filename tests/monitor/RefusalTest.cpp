#include "tests/monitor/ServerBench.h"

#include <deque>

namespace {

using namespace Monitor;
using namespace std::chrono_literals;

constexpr const char* token = "0123456789abcdef0123456789abcdef";

std::string get(const std::string& target, const std::string& host = "127.0.0.1:8765", const std::string& more = {})
{
    return "GET " + target + " HTTP/1.1\r\nHost: " + host + "\r\n" + more + "\r\n";
}

std::string fields(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "F" + std::to_string(i) + ": x\r\n";
    return text;
}

std::string upgrade(const std::string& protocol)
{
    return "Connection: Upgrade\r\nUpgrade: websocket\r\nSec-WebSocket-Version: 13\r\n"
           "Sec-WebSocket-Key: AAAAAAAAAAAAAAAAAAAAAA==\r\nSec-WebSocket-Protocol: " +
           protocol + "\r\n";
}

struct Asked {
    const char* _name;
    Door _door;
    std::string _request;
    std::string _status;
    std::string _says; // in the answer
    std::chrono::seconds _passed{0};
    bool _ends = false; // the client sends no more
};

class Admission : public ::testing::TestWithParam<Asked> {};

TEST_P(Admission, RefusesEachByName)
{
    const Asked& row = GetParam();
    ServerBench bench(token, true);
    BenchClient client(bench, row._door);
    client.send(row._request);
    if (row._ends)
        client.endSending();
    bench.round();
    bench.pass(row._passed);
    ASSERT_TRUE(client.waitFor("\r\n\r\n"));
    const std::string answer = row._status == "200" ? client.takeUpTo("}") : client.readAll();
    EXPECT_EQ(answer.substr(0, 12), "HTTP/1.1 " + row._status);
    EXPECT_NE(answer.find(row._says), answer.npos) << answer;
}

const std::string tooLong = "POST /pub/a HTTP/1.1\r\nHost: localhost\r\n";
const std::string million(1 << 20, 'x');

INSTANTIATE_TEST_SUITE_P(
    Requests, Admission,
    ::testing::Values(
        Asked{"Loopback", Door::Loopback, get("/host"), "200", "pid"},
        Asked{"Ipv6", Door::Loopback, get("/host", "[::1]:8765", "Origin: http://[::1]:8765\r\n"), "200", "pid"},
        Asked{"SameOrigin", Door::Loopback, get("/host", "localhost", "Origin: http://LOCALHOST:80\r\n"), "200", "pid"},
        Asked{"LoopbackPage", Door::Loopback, get("/host", "127.0.0.1:8765", "Origin: http://localhost:8000\r\n"),
              "200", "pid"},
        Asked{"PageThatBeginsLikeOne", Door::Loopback,
              get("/host", "127.0.0.1", "Origin: http://localhost.evil.example\r\n"), "403", "evil"},
        Asked{"UnixAnyHost", Door::Unix, get("/host", "evil.example"), "200", "pid"},
        Asked{"Token", Door::Network, get("/host?token=" + std::string(token), "studio"), "200", "pid"},
        Asked{"TokenInField", Door::Network, get("/host", "h", "Authorization: Bearer " + std::string(token) + "\r\n"),
              "200", "pid"},
        Asked{"ForeignHost", Door::Loopback, get("/host", "evil.example:8765"), "403", "'evil.example:8765'"},
        Asked{"HostThatBeginsLikeOne", Door::Loopback, get("/host", "127.0.0.1.evil.example"), "403", "no loopback"},
        Asked{"NoHost", Door::Loopback, "GET /host HTTP/1.1\r\n\r\n", "403", "no loopback"},
        Asked{"ForeignOrigin", Door::Loopback, get("/host", "127.0.0.1", "Origin: http://evil.example\r\n"), "403",
              "'http://evil.example'"},
        Asked{"OriginNull", Door::Loopback, get("/host", "127.0.0.1", "Origin: null\r\n"), "403", "'null'"},
        Asked{"ForeignOriginOfSocket", Door::Loopback,
              get("/", "127.0.0.1", "Origin: http://evil.example\r\n" + upgrade("ostrel.batch.v1")), "403", "evil"},
        Asked{"NoToken", Door::Network, get("/host", "studio"), "403", "ssh -L"},
        Asked{"WrongToken", Door::Network, get("/host?token=0123", "studio"), "403", "not the one of this run"},
        Asked{"WriteOverTcp", Door::Loopback, tooLong + "Content-Length: 2\r\n\r\n{}", "403", "--monitor-write"},
        Asked{"BodyAboveOneMebibyte", Door::Unix, tooLong + "Content-Length: 1048577\r\n\r\n", "413", "1048576"},
        Asked{"ChunksAboveOneMebibyte", Door::Unix,
              tooLong + "Transfer-Encoding: chunked\r\n\r\n100000\r\n" + million + "\r\n1\r\nx\r\n0\r\n\r\n", "413",
              "1048576"},
        Asked{"Fields65", Door::Unix, get("/host", "h", fields(64)), "431", "64 fields"},
        Asked{"HeadTooLong", Door::Unix, get("/" + std::string(40000, 'a')), "431", "32768"},
        Asked{"NoHttp", Door::Unix, "\x16\x03\x01\x02\r\n\r\n", "400", "no HTTP/1.1 request"},
        Asked{"BadPercent", Door::Unix, get("/why?from=%4"), "400", "'%'"},
        Asked{"HalfARequest", Door::Unix, "GET /host HTTP/1.1\r\nHo", "400", "ended in its middle", 0s, true},
        Asked{"HalfABody", Door::Unix, tooLong + "Content-Length: 9\r\n\r\n{}", "400", "ended in its middle", 0s, true},
        Asked{"SlowHead", Door::Loopback, "GET /host HTTP/1.1\r\nHo", "408", "10 s", 10s},
        Asked{"SlowBody", Door::Unix, tooLong + "Content-Length: 9\r\n\r\n{}", "408", "10 s", 10s},
        Asked{"UnknownSubprotocol", Door::Unix, get("/", "h", upgrade("chat")), "400", "ostrel.batch.v1"},
        Asked{"SocketElsewhere", Door::Unix, get("/host", "h", upgrade("ostrel.batch.v1")), "404", "allowed: /"}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(AdmissionOfClients, The33rdIsToldAndTheOtherDoorStaysOpen)
{
    ServerBench bench;
    std::deque<BenchClient> clients;
    for (int i = 0; i < 32; ++i)
        clients.emplace_back(bench, Door::Loopback);
    EXPECT_NE(BenchClient(bench, Door::Loopback).readAll().find("there are 32 clients"), std::string::npos);
    BenchClient owner(bench, Door::Unix);
    owner.send(get("/host"));
    EXPECT_TRUE(owner.waitFor("pid"));
    clients.pop_front();
    bench.round();
    BenchClient next(bench, Door::Loopback);
    next.send(get("/host"));
    EXPECT_TRUE(next.waitFor("pid"));
}

TEST(AdmissionOfClients, OneThatSaysNothingIsLetGoAndOneThatAsksAgainStays)
{
    ServerBench bench;
    BenchClient silent(bench), busy(bench);
    for (int i = 0; i < 3; ++i) {
        bench.pass(30s);
        busy.send(get("/host"));
        EXPECT_FALSE(busy.takeUpTo("}\n").empty());
    }
    EXPECT_EQ(silent.readAll(), "");
}
} // namespace
