#include "tests/nodes/OscFixture.h"
#include "tests/nodes/SampleValues.h"
#include "tests/support/LogCapture.h"
#include "trovio/OutSlot.h"
#include "trovio/SlotTypes.h"
#include <cstring>

namespace Trovio::Nodes {
namespace {

/// An out-slot of the root, routed to a node.
template <class T>
class Source {
public:
    explicit Source(const std::string& target) : _target(target), _slot("source")
    {
        Root::get().addOutSlot(label(), &_slot);
        Root::get().addRoute(label(), _target);
    }
    ~Source()
    {
        Root::get().removeRoute(label(), _target);
        Root::get().removeSlot(label());
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    void push(const T& value, double stamp = 1.7e9) { _slot.push(Data<T>(value, Time(stamp))); }

private:
    std::string label() const { return "source of " + _target; }

    const std::string _target;
    OutSlot<T> _slot;
};

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
    FakeLookup& runWithLookup(const std::string& out)
    {
        auto lookup = std::make_unique<FakeLookup>();
        FakeLookup& fake = *lookup;
        run("send=tracker.example:9000 out='" + out + "'", std::move(lookup));
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

TEST_F(OscOutput, RecordsBecomeMessagesThatOthersUnderstand)
{
    run("send=" + peerAddress() + " out='/light/color Color'");
    Source<Color> color("OSC/light/color");
    color.push(Color(0.25F, 0.5F, 1.0F));
    Packet packet = _peer.receive();
    const LoMessage message(lo_message_deserialise(packet.data(), packet.size(), nullptr), &lo_message_free);
    ASSERT_TRUE(message);
    EXPECT_STREQ(lo_get_path(packet.data(), static_cast<ssize_t>(packet.size())), "/light/color");
    EXPECT_STREQ(lo_message_get_types(message.get()), "fff");
    float green = 0; // copied: arguments stand at multiples of four
    std::memcpy(&green, lo_message_get_argv(message.get())[1], sizeof(green));
    EXPECT_EQ(green, 0.5F);
    awaitCount("out messages", 1);
}

TEST_F(OscOutput, EveryTypeArrivesEqualAtAnotherNode)
{
    std::string entries;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        const std::string name = TypeName<T>::getName();
        entries += (entries.empty() ? "/" : ", /") +
                   (name.ends_with("]") ? name.substr(0, name.size() - 2) + "s" : name) + " " + name;
    });
    run("listen=127.0.0.1:0 in='" + entries + "'");
    StandingNode<OscNode> sender(std::make_unique<OscNode>(_clock),
                                 "label=sender bundle=always send=" + listening().str() + " out='" + entries + "'");
    int types = 0;
    forEachSlotType([&]<class T>(TypeTag<T>) {
        std::string name = TypeName<T>::getName();
        name = name.ends_with("]") ? name.substr(0, name.size() - 2) + "s" : name;
        Source<T> source("sender/" + name);
        Probe<T> probe("OSC/" + name);
        for (const T& sample : sampleValues<T>()) {
            source.push(sample, 1.7e9 + types);
            const auto record = probe.next();
            EXPECT_TRUE(isSame(record.getValue(), sample)) << name;
            EXPECT_EQ(record.getTimeStamp(), Time(1.7e9 + types));
        }
        ++types;
    });
    EXPECT_EQ(types, 40);
}

TEST_F(OscOutput, WhatWaitedGoesOutInOneBundleWithItsTimes)
{
    FakeLookup& lookup = runWithLookup("/a Float, /b Long");
    Source<float> a("OSC/a");
    Source<long> b("OSC/b");
    a.push(1, 1.7e9 + 1); // nobody is kept waiting by the name server
    a.push(2, 1.7e9 + 2);
    b.push(3, 1.7e9 + 3);
    lookup.answer({_peer.getAddress(), {}});
    advanceUntil([&] { return _node->count("out packets") == 1; });
    const Packet packet = _peer.receive();
    struct Collector final : OscMessageVisitor {
        void visit(const OscMessage& message) override
        {
            _seen.push_back(std::string(message._address) + "@" +
                            std::to_string(static_cast<int>(message._stamp.getSeconds() - 1.7e9)));
        }
        std::vector<std::string> _seen;
    } collector;
    EXPECT_EQ(readOscPacket(packet, Time(), collector), std::nullopt);
    EXPECT_EQ(collector._seen, (std::vector<std::string>{"/a@1", "/b@3", "/a@2"}));
}

TEST_F(OscOutput, ARefusingPeerDegradesTheNodeUntilItListensAgain)
{
    auto other = std::make_unique<UdpPeer>();
    const std::uint16_t port = other->getPort();
    other.reset();
    run("send=127.0.0.1:" + std::to_string(port) + " out='/a Float'");
    Source<float> source("OSC/a");
    source.push(1);
    await([&] { return state()._degraded; }); // by the answer alone, without a second record
    EXPECT_EQ(state()._reason, "nobody listens at 127.0.0.1:" + std::to_string(port));
    advanceUntil([&] { return _clock.now() > 10.0; });
    EXPECT_TRUE(state()._degraded);

    other = std::make_unique<UdpPeer>(port);
    source.push(2);
    EXPECT_EQ(other->receive(), numbersMessage("/a", 'f', {2}));
    advanceUntil([&] { return !state()._degraded; });
}

TEST_F(OscOutput, AnUnknownHostDegradesTheNodeAndIsAskedForAgain)
{
    FakeLookup& lookup = runWithLookup("/a Float");
    lookup.answer({{}, "no such name"});
    advanceUntil([&] { return state()._degraded; });
    EXPECT_EQ(state()._reason, "cannot find the host 'tracker.example': no such name");
    advanceUntil([&] { return lookup._begun == 2; });
    lookup.answer({_peer.getAddress(), {}});
    advanceUntil([&] { return !state()._degraded; });
}

TEST_F(OscOutput, StopsWhileTheNameServerThinks)
{
    FakeLookup& lookup = runWithLookup("/a Float");
    _node->stop();
    EXPECT_TRUE(lookup._cancelled);
    _node->standAgain();
    await([&] { return lookup._begun == 2; });
}

TEST_F(OscOutput, AMessageTooLargeForAPacketIsCountedAndReported)
{
    const LogCapture log;
    run("send=" + peerAddress() + " out='/a Float[], /b Float'");
    Source<SharedVector<float>> large("OSC/a");
    Source<float> small("OSC/b");
    SharedVector<float> values;
    values->resize(20000);
    large.push(values);
    awaitCount("out failed", 1);
    small.push(1);
    EXPECT_EQ(_peer.receive(), numbersMessage("/b", 'f', {1}));
    EXPECT_FALSE(state()._degraded);
    await([&] { return !log.texts().empty() && log.texts().back().find("does not fit") != std::string::npos; });
}

TEST_F(OscOutput, PacketsThatComeBackAreIgnored)
{
    run("send=" + peerAddress() + " out='/a Float'");
    Source<float> source("OSC/a");
    source.push(1);
    SocketAddress sender;
    _peer.receive(&sender);
    for (int i = 0; i < 200; ++i)
        _peer.send(raw("pong"), sender);
    source.push(2);
    EXPECT_EQ(_peer.receive(), numbersMessage("/a", 'f', {2}));
}

} // namespace
} // namespace Trovio::Nodes
