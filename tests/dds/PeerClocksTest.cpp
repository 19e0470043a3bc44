#include "nodes/dds/clocks/PeerClocks.h"
#include "nodes/dds/clocks/ValueTiming.h"
#include <gtest/gtest.h>

namespace Trovio::Nodes {
namespace {

constexpr double ahead = 5.0; // seconds, of all peers
constexpr std::uint64_t sender = 99;

PeerClocks::Answer answerTo(std::uint64_t peer, double asked)
{
    return {peer, sender, asked, asked + ahead + 0.01, asked + ahead + 0.01, asked + 0.02};
}

/// Asks at that time whoever is due, and says who it was; 0 for nobody.
std::uint64_t askAt(PeerClocks& peers, double now)
{
    return peers.ask(now, now).value_or(0);
}

TEST(PeerClocks, AskInAHurryAndThenNowAndThenWhileWanted)
{
    PeerClocks peers;
    EXPECT_FALSE(peers.nextAsking());
    EXPECT_TRUE(peers.want(7));
    double now = 1000.0;
    for (int i = 0; i < 8; ++i) {
        EXPECT_EQ(askAt(peers, now), 7U);
        EXPECT_EQ(askAt(peers, now), 0U) << "not due yet";
        now += 0.1;
    }
    EXPECT_FALSE(peers.nextAsking()) << "nothing came from it since";
    EXPECT_FALSE(peers.want(7));
    EXPECT_TRUE(peers.want(8));
    EXPECT_EQ(askAt(peers, now), 8U);
    EXPECT_EQ(peers.getKnowledge(7, now)._unanswered, 8U);
    for (int i = 1; i < 8; ++i)
        askAt(peers, now += 0.1);
    EXPECT_EQ(askAt(peers, 1002.8), 7U);
}

TEST(FalseAnswers, ChangeNothing)
{
    using Answer = PeerClocks::Answer;
    const std::pair<const char*, void (*)(Answer&)> rows[] = {
        {"to no question", [](Answer& answer) { answer._asked += 0.001; }},
        {"to one that is answered", [](Answer& answer) { answer._asked = 999.0; }},
        {"for a peer that is none", [](Answer& answer) { answer._peer = 8; }},
        {"of another sender", [](Answer& answer) { ++answer._sender; }},
        {"of a clock that shows no date", [](Answer& answer) { answer._received = answer._answered = 1e15; }}};
    for (const auto& [name, change] : rows) {
        SCOPED_TRACE(name);
        PeerClocks peers;
        peers.want(7);
        askAt(peers, 999.0);
        ASSERT_TRUE(peers.note(answerTo(7, 999.0)));
        askAt(peers, 1000.0);
        Answer answer = answerTo(7, 1000.0);
        answer._received += 100.0;
        answer._answered += 100.0;
        change(answer);
        EXPECT_FALSE(peers.note(answer));
        EXPECT_NEAR(peers.getKnowledge(7, 1000.0)._estimate->_offset, ahead, 0.1);
        EXPECT_TRUE(peers.note(answerTo(7, 1000.0))) << "the true one still counts";
    }
}

TEST(PeerClocks, PeerThatComesAgainMayHaveAnotherSender)
{
    PeerClocks peers;
    peers.want(7);
    askAt(peers, 1000.0);
    ASSERT_TRUE(peers.note(answerTo(7, 1000.0)));
    peers.forgetSender(sender);
    askAt(peers, 1001.0);
    PeerClocks::Answer answer = answerTo(7, 1001.0);
    ++answer._sender;
    EXPECT_TRUE(peers.note(answer));
    peers.forgetSenders(); // all have other names where the domain is opened again
    askAt(peers, 1002.0);
    EXPECT_TRUE(peers.note(answerTo(7, 1002.0)));
}

TEST(PeerClocks, ForgetWhoNeverAnsweredAndThenWhoWasSilentLongest)
{
    constexpr std::uint64_t most = 1024;
    PeerClocks peers;
    double now = 1000.0;
    const auto answer = [&](std::uint64_t peer) {
        peers.want(peer);
        while (askAt(peers, now += 3.0) != peer) {
        }
        EXPECT_TRUE(peers.note(answerTo(peer, now)));
    };
    answer(1);
    for (std::uint64_t peer = 2; peer <= most; ++peer)
        EXPECT_TRUE(peers.want(peer));
    EXPECT_TRUE(peers.want(most + 1));
    EXPECT_TRUE(peers.getKnowledge(1, now)._estimate);
    for (std::uint64_t peer = 3; peer <= most + 1; ++peer)
        EXPECT_FALSE(peers.want(peer)) << "2 was forgotten, not " << peer;
    for (std::uint64_t peer = 3; peer <= most + 1; ++peer)
        answer(peer);
    answer(1);
    peers.want(2);
    EXPECT_FALSE(peers.want(1)) << "answered last";
    EXPECT_TRUE(peers.want(3));
}

TEST(DescribeTiming, SaysWhatIsKnownAndWhatIsNot)
{
    const std::pair<PeerClocks::Knowledge, const char*> rows[] = {
        {{ClockOffset::Estimate{3.2, 0.000121}, 1.0, 0},
         "0.80 ms from its source to here, 12 ms old, wrong by 0.13 ms at most; its source's clock "
         "is 3.2 s ahead"},
        {{ClockOffset::Estimate{-250.0, 0.5}, 1.0, 0},
         "-253 s from its source to here, -253 s old, wrong by 501 ms at most; its source's clock is "
         "250 s behind"},
        {{}, "-3.2 s old by our clock; its source's clock is not known: it was not asked yet"},
        {{std::nullopt, std::nullopt, 5},
         "-3.2 s old by our clock; its source's clock is not known: it has not answered 5 questions"},
        {{std::nullopt, 75.0, 30},
         "-3.2 s old by our clock; its source's clock is not known: it last answered 75.0 s ago"}};
    for (const auto& [clock, text] : rows)
        EXPECT_EQ(describeTiming({7, 1003.2, 1000.0008}, clock, 1000.012), text);
}

} // namespace
} // namespace Trovio::Nodes
