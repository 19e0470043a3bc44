#include "tests/nodes/FakeLookup.h"
#include "tests/nodes/OscFixture.h"
#include "tests/support/LogCapture.h"

namespace Trovio::Nodes {
namespace {

class OscOutput : public OscFixture {
protected:
    /// Sends to a name that only the returned lookup knows.
    FakeLookup& runWithLookup(const std::string& settings = "")
    {
        auto lookup = std::make_unique<FakeLookup>("tracker.example");
        FakeLookup& fake = *lookup;
        run("send=tracker.example:9000 out='/a Float'" + settings, std::move(lookup));
        await([&] { return fake._begun == 1; });
        return fake;
    }
    /// Moves the clock on until something has happened.
    template <class Condition>
    void advanceUntil(Condition condition)
    {
        await([&] {
            _clock.advance(0.05);
            return condition();
        });
    }
};

TEST_F(OscOutput, EachHalfFailsAndRecoversAlone)
{
    const LogCapture log;
    auto other = std::make_unique<UdpPeer>();
    const std::string missing = "cannot find the host 'tracker.example': no such name";
    FakeLookup& lookup = runWithLookup(" in='/b Float' listen=" + other->getAddress().str());
    lookup.answer({{}, "no such name"});
    advanceUntil([&] { return state()._reason.ends_with("taken by another program; " + missing); });
    other.reset();
    advanceUntil([&] { return state()._reason == missing; });
    const auto texts = log.texts();
    EXPECT_NE(std::find(texts.begin(), texts.end(), "OSC: receives again\n"), texts.end());
    Probe<float> probe("OSC/b");
    send(numbersMessage("/b", 'f', {2}));
    EXPECT_EQ(probe.next().getValue(), 2.0F);
    advanceUntil([&] { return lookup._begun == 2; });
    advanceUntil([&] {
        lookup.answer({_peer.getAddress(), {}}); // once more where the clock has run ahead of the node
        return !state()._degraded;
    });
}

TEST_F(OscOutput, StopsWhileTheNameServerThinks)
{
    FakeLookup& lookup = runWithLookup();
    _node->stop();
    EXPECT_TRUE(lookup._cancelled);
    _node->standAgain();
    await([&] { return lookup._begun == 2; });
}

TEST_F(OscOutput, AMessageTooLargeForAPacketIsCountedAndReported)
{
    const LogCapture log;
    run("send=" + peerAddress() + " out='/a Float[], /b Float'");
    Feed<SharedVector<float>> large("OSC/a");
    Feed<float> small("OSC/b");
    SharedVector<float> values;
    values->resize(20000);
    large.push(values);
    awaitCount("out failed", 1);
    small.push(1.0F);
    EXPECT_EQ(_peer.receive(), numbersMessage("/b", 'f', {1}));
    EXPECT_FALSE(state()._degraded);
    await([&] { return !log.texts().empty() && log.texts().back().find("does not fit") != std::string::npos; });
}

} // namespace
} // namespace Trovio::Nodes
