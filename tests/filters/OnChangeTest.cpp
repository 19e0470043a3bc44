#include "nodes/filters/OnChange.h"
#include "tests/filters/RelayBench.h"

namespace Trovio::Nodes {
namespace {

template <class T>
void expectSent(const std::string& settings, const std::vector<T>& in, const std::vector<T>& expected)
{
    SCOPED_TRACE(TypeName<T>::getName() + " " + settings);
    RelayBench<OnChange, T> bench(settings);
    for (const T& value : in)
        bench.send(value);
    for (const T& value : expected)
        EXPECT_EQ(bench.next().getValue(), value);
    await([&] { return bench.node().count("received") == in.size(); });
    bench.node().stop();
    EXPECT_TRUE(bench.output().empty());
    EXPECT_EQ(bench.node().count("sent"), expected.size());
    EXPECT_EQ(bench.node().count("unchanged"), in.size() - expected.size());
}

TEST(OnChange, SendsWhatDiffersFromWhatItSentLast)
{
    expectSent<float>("", {1, 1, 2, 2, 1}, {1, 2, 1});
    expectSent<double>("tolerance=1", {0, 1, 0.9, 1.1, 0.2, 2.2}, {0, 1.1, 2.2}); // slow drift, too
    expectSent<bool>("", {false, false, true}, {false, true});
    expectSent<long>("", {1L << 53, (1L << 53) + 1}, {1L << 53, (1L << 53) + 1});
    expectSent<std::string>("", {"a", "a", "b"}, {"a", "b"});
    expectSent<Vec2<float>>("tolerance=0.5", {{0, 0}, {0.5F, 0.5F}, {0, 0.6F}}, {{0, 0}, {0, 0.6F}});
    const Rotation none, opposite(0, 0, 0, -1), slight(0, 0, 0.01F, 1), quarter(0, 0, 1, 1);
    expectSent<Rotation>("", {none, opposite, slight}, {none, slight});
    expectSent<Rotation>("tolerance=0.1", {none, slight, quarter}, {none, quarter});
    SharedVector<float> one, same, longer;
    *one = *same = {1};
    *longer = {1, 1};
    expectSent<SharedVector<float>>("", {one, same, longer}, {one, longer});
}

TEST(OnChange, AfterALongestSilenceTheNewestOfWhatWasKeptBackGoesOutOnce)
{
    RelayBench<OnChange, float> bench("silence=1 tolerance=5");
    EXPECT_EQ(bench.pass(1.0F, 10.0), 1.0F);
    bench.clock().advance(0.9);
    bench.send(2.0F, 11.0);
    bench.send(3.0F, 12.0);
    await([&] { return bench.node().count("unchanged") == 2; });
    bench.clock().advance(0.1);
    const auto record = bench.next();
    EXPECT_EQ(record.getValue(), 3.0F);
    EXPECT_EQ(record.getTimeStamp(), Time(12.0));
    bench.clock().advance(100); // its source is silent, and so is it
    EXPECT_EQ(bench.pass(9.0F), 9.0F);
    bench.node().stop();
    EXPECT_TRUE(bench.output().empty());
    EXPECT_EQ(bench.node().count("received"), 4U);
    EXPECT_EQ(bench.node().count("sent"), 3U);
    EXPECT_EQ(bench.node().count("after silence"), 1U);
}

} // namespace
} // namespace Trovio::Nodes
