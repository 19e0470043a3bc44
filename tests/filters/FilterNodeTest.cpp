#include "nodes/filters/OneEuro.h"
#include "nodes/filters/Scale.h"
#include "nodes/relay/TypedLane.h"
#include "tests/filters/RelayBench.h"
#include "tests/support/Says.h"
#include <thread>

namespace Trovio::Nodes {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();

template <class E>
SharedVector<E> shared(std::vector<E> elements)
{
    SharedVector<E> handle;
    *handle = std::move(elements);
    return handle;
}

/// Has no memory for a negative value.
class ShortOfMemory final : public RelayNode {
public:
    explicit ShortOfMemory(Clock& clock) : RelayNode(clock) {}
    static const NodeTypeEntry& getEntry()
    {
        static const RelayTable table("Float", "Float", {});
        static const NodeTypeEntry entry{"Short", "", table.rows(), createOnSystemClock<ShortOfMemory>};
        return entry;
    }

private:
    std::unique_ptr<Lane> createLane(const Settings& settings) override
    {
        const auto pass = [](Data<float>& record) {
            return record.getValue() < 0 ? throw std::bad_alloc() : Outcome::Sent;
        };
        return std::make_unique<TypedLane<float, decltype(pass)>>(readQueue(settings), pass);
    }
};

TEST(Filter, GoesOnAfterAMomentWithoutMemory)
{
    RelayBench<ShortOfMemory, float> bench("");
    bench.send(-1.0F);
    while (bench.node().count("without memory") == 0) // else it pauses by a clock that nobody moves
        std::this_thread::yield();
    EXPECT_EQ(bench.pass(2.0F), 2.0F);
    bench.node().stop();
    EXPECT_EQ(bench.node().count("without memory"), 1U);
    EXPECT_FALSE(bench.node()->getState()._degraded);
}

TEST(Filter, RejectsByCauseAndTheSumsAreExact)
{
    RelayBench<Scale, float> bench("gain=10");
    for (const double value : {1.0, std::nan(""), infinity, -infinity, 2e38, 2.0})
        bench.send(static_cast<float>(value));
    EXPECT_EQ(bench.next().getValue(), 10.0F);
    EXPECT_EQ(bench.next().getValue(), 20.0F);
    bench.node().stop();
    EXPECT_EQ(bench.node().count("received"), 6U);
    EXPECT_EQ(bench.node().count("sent"), 2U);
    EXPECT_EQ(bench.node().count("rejected value"), 3U);
    EXPECT_EQ(bench.node().count("rejected result"), 1U);
    const std::string remark = bench.node()->getRemarks().at(0)._text;
    EXPECT_TRUE(remark.starts_with("rejected 3 with a value that is not finite")) << remark;
    EXPECT_TRUE(says(remark, ", and 1 with a result beyond the limits of its type; the last at "));
}

TEST(Filter, RotationsWithoutDirectionAreRejected)
{
    RelayBench<OneEuro, Rotation> bench("");
    bench.send(Rotation(0, 0, 0, 0), 1.0);
    EXPECT_EQ(bench.pass(Rotation(0, 0, 0, 2), 2.0), Rotation());
    bench.node().stop();
    EXPECT_EQ(bench.node().count("rejected value"), 1U);
}

TEST(Filter, ArraysAreChangedInACopyAndAsAWhole)
{
    RelayBench<Scale, SharedVector<Vec2<float>>> bench("gain='2 3'");
    const auto sent = shared<Vec2<float>>({{1, 1}, {2, -1}});
    const auto received = bench.pass(sent);
    EXPECT_EQ(*received, (std::vector<Vec2<float>>{{2, 3}, {4, -3}}));
    EXPECT_EQ(*sent, (std::vector<Vec2<float>>{{1, 1}, {2, -1}}));

    bench.send(shared<Vec2<float>>({{1, 1}, {2, std::nanf("")}}));
    EXPECT_TRUE(bench.pass(SharedVector<Vec2<float>>())->empty());
    bench.node().stop();
    EXPECT_EQ(bench.node().count("rejected value"), 1U);
}

TEST(Filter, EachElementOfAnArrayHasAHistoryUntilTheLengthChanges)
{
    RelayBench<OneEuro, SharedVector<double>> bench("");
    bench.pass(shared<double>({1, 100}), 0.0);
    const auto second = bench.pass(shared<double>({1.2, 100}), 0.01);
    expectNear(*second, {1.011823479, 100}, 1e-9);
    EXPECT_EQ(*bench.pass(shared<double>({5, 6, 7}), 0.02), (std::vector<double>{5, 6, 7}));
}

TEST(Filter, PushesFromItsOwnThreadInOrder)
{
    class Listener final : public SlotListener {
    public:
        void dataArrived(Slot&) override
        {
            if (std::this_thread::get_id() == _pusher)
                ++_onPusher;
        }
        const std::thread::id _pusher = std::this_thread::get_id();
        std::atomic<int> _onPusher{0};
    };
    Listener listener;
    {
        RelayBench<Scale, long> bench("gain=2 queue=1000");
        bench.output().setListener(&listener);
        for (long i = 0; i < 1000; ++i)
            bench.send(i);
        for (long i = 0; i < 1000; ++i)
            EXPECT_EQ(bench.next().getValue(), 2 * i);
    }
    EXPECT_EQ(listener._onPusher, 0);
}

} // namespace
} // namespace Trovio::Nodes
