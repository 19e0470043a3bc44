#include "nodes/filters/convert/Convert.h"
#include "nodes/filters/convert/Align.h"
#include "nodes/relay/Quaternion.h"
#include "tests/filters/RelayBench.h"
#include <numbers>
#include <random>

namespace Trovio::Nodes {
namespace {

TEST(Convert, TruthStaysUntilTheHysteresisIsPassedForEachElementOfAnArray)
{
    RelayBench<Convert, SharedVector<float>, SharedVector<bool>> bench("to=Bool[] threshold=0.5 hysteresis=0.25");
    const struct {
        std::vector<float> _in;
        std::vector<bool> _expected;
    } rows[] = {{{0.49F, 0.5F}, {false, true}},
                {{0.5F, 0.25F}, {true, true}},
                {{0.4F, 0.24F}, {true, false}},
                {{0.1F, 0.49F}, {false, false}}};
    for (const auto& row : rows) {
        SharedVector<float> in;
        *in = row._in;
        EXPECT_EQ(*bench.pass(in), row._expected);
    }
}

TEST(Convert, WholeNumbersKeepEveryBitOrAreRejected)
{
    EXPECT_EQ((RelayBench<Convert, long>("to=Long").pass(9007199254740993L)), 9007199254740993L);
    RelayBench<Convert, double, long> bench("to=Long");
    bench.send(0x1p63);
    EXPECT_EQ(bench.pass(-0x1p62), -(1L << 62));
    bench.node().stop();
    EXPECT_EQ(bench.node().count("rejected result"), 1U);
}

/// Rotations of all kinds, among them those where the first and the last turn are about one line, and their neighbours.
std::vector<Rotation> manyRotations(const std::string& order)
{
    std::mt19937 random(5); // NOLINT: the same each time
    std::vector<Rotation> all;
    for (int i = 0; i < 50; ++i) {
        std::normal_distribution<float> part;
        all.push_back(Quaternion(part(random), part(random), part(random), part(random)).toRotation());
    }
    const auto axis = [&](std::size_t i) { return static_cast<std::size_t>(order[i] - 'x'); };
    for (const double beside : {0.0, 1e-8, -3e-7, 6e-7, 1e-5})
        for (const double sign : {1.0, -1.0})
            all.push_back(
                (Quaternion::about(axis(2), 0.3) * Quaternion::about(axis(1), sign * (std::numbers::pi / 2 + beside)) *
                 Quaternion::about(axis(0), -1.1))
                    .toRotation());
    return all;
}

template <class NodeT, class T, class Out = T>
std::vector<Out> through(const std::string& settings, const std::vector<T>& values)
{
    RelayBench<NodeT, T, Out> bench(settings);
    std::vector<Out> results;
    for (const T& value : values)
        results.push_back(bench.pass(value));
    return results;
}

TEST(Convert, RotationToAnglesAndBackInEveryOrder)
{
    std::string order = "xyz";
    do {
        SCOPED_TRACE(order);
        const auto rotations = manyRotations(order);
        const std::string form = " unit=deg order=" + order;
        const auto angles = through<Convert, Rotation, Vec3<double>>("to=Vec3d" + form, rotations);
        const auto back = through<Convert, Vec3<double>, Rotation>("to=Rotation" + form, angles);
        for (std::size_t i = 0; i < rotations.size(); ++i) {
            EXPECT_LE(std::abs(angles[i][static_cast<std::size_t>(order[1] - 'x')]), 90.0);
            const Quaternion after = Quaternion(back[i]).nearTo(Quaternion(rotations[i]));
            expectNear({after._x, after._y, after._z, after._w}, toNumbers(rotations[i]), 1e-6);
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(Align, BackWithTheInverse)
{
    const std::vector<Vec3<double>> points{{0, 0, 0}, {1, -2, 3}, {1e-3, 1e3, 7}};
    const auto moved = through<Align, Vec3<double>>("rotation='1 2 3 4' scale=4 translation='5 -6 7'", points);
    const auto back = through<Align, Vec3<double>>("rotation='-1 -2 -3 4' scale=0.25",
                                                   through<Align, Vec3<double>>("translation='-5 6 -7'", moved));
    for (std::size_t i = 0; i < points.size(); ++i)
        expectNear(toNumbers(back[i]), toNumbers(points[i]), 1e-6);
}

} // namespace
} // namespace Trovio::Nodes
