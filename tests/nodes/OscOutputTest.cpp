#include "tests/nodes/OscFixture.h"
#include "tests/support/LogCapture.h"
#include "trovio/OutSlot.h"

namespace Trovio::Nodes {
namespace {

/// A name server whose answers the test gives.
class FakeLookup final : public NameLookup {
public:
    void begin(const std::string& host, std::uint16_t) override
    {
        EXPECT_EQ(host, "tracker.example");
        ++_begun;
    }
    std::optional<Answer> poll() override
    {
        const Ostrel::LockGuard guard(_lock);
        return std::exchange(_answer, std::nullopt);
    }
    void cancel() override { _cancelled = true; }

    void answer(const Answer& answer)
    {
        const Ostrel::LockGuard guard(_lock);
        _answer = answer;
    }

    std::atomic<int> _begun{0};
    std::atomic<bool> _cancelled{false};

private:
    Ostrel::Mutex _lock;
    std::optional<Answer> _answer OSTREL_GUARDED_BY(_lock);
};

class OscOutput : public OscFixture {
protected:
    /// Sends to a name that only the returned lookup knows.
    FakeLookup& runWithLookup(const std::string& settings = "")
    {
        auto lookup = std::make_unique<FakeLookup>();
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

TEST_F(OscOutput, AnUnknownHostDegradesTheNodeAndIsAskedForAgain)
{
    FakeLookup& lookup = runWithLookup();
    lookup.answer({{}, "no such name"});
    advanceUntil([&] { return state()._degraded; });
    EXPECT_EQ(state()._reason, "cannot find the host 'tracker.example': no such name");
    advanceUntil([&] { return lookup._begun == 2; });
    lookup.answer({_peer.getAddress(), {}});
    advanceUntil([&] { return !state()._degraded; });
}

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
    OutSlot<SharedVector<float>> large("large");
    OutSlot<float> small("small");
    Root::get().addOutSlot("large", &large);
    Root::get().addOutSlot("small", &small);
    Root::get().addRoute("large", "OSC/a");
    Root::get().addRoute("small", "OSC/b");
    SharedVector<float> values;
    values->resize(20000);
    large.push(Data(values));
    awaitCount("out failed", 1);
    small.push(Data(1.0F));
    EXPECT_EQ(_peer.receive(), numbersMessage("/b", 'f', {1}));
    EXPECT_FALSE(state()._degraded);
    await([&] { return !log.texts().empty() && log.texts().back().find("does not fit") != std::string::npos; });
    Root::get().removeSlot("large");
    Root::get().removeSlot("small");
}

} // namespace
} // namespace Trovio::Nodes
