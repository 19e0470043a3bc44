#include "nodes/filters/OnChange.h"
#include "nodes/filters/convert/Align.h"
#include "nodes/filters/convert/Convert.h"
#include "nodes/filters/convert/Join.h"
#include "nodes/filters/convert/Split.h"
#include "tests/filters/RelayBench.h"
#include <tuple>

namespace Trovio::Nodes {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr float half = 0.70710678F;

/// A Join under the root, with a feed for each part.
template <class T, class... Parts>
class JoinBench {
public:
    template <class... Names>
    explicit JoinBench(const std::string& settings, const Names&... names)
        : _node(std::make_unique<Join>(_clock), "label=join type=" + TypeName<T>::getName() + " " + settings),
          _feeds(std::string("join/") + names...)
    {
    }

    template <std::size_t I, class P>
    void send(const P& value, double stamp)
    {
        std::get<I>(_feeds).push(value, stamp);
    }
    Data<T> next() { return _probe.next(); }
    StandingNode<Join>& node() { return _node; }
    bool isIdle() { return _probe.slot().empty(); }

private:
    OpenRoot _root;
    ManualClock _clock;
    StandingNode<Join> _node;
    std::tuple<Feed<Parts>...> _feeds;
    Probe<T> _probe{"join/out"};
};

using PairBench = JoinBench<Vec2<double>, double, double>;

struct Arrival {
    char _part;
    double _value, _stamp;
};

struct Course {
    const char* _settings;
    std::vector<Arrival> _arrivals;
    std::vector<std::array<double, 3>> _expected; // x, y and the stamp
    unsigned _kept, _rejectedValues, _rejectedStamps;
};

const Course courses[] = {
    // Whichever part comes first, and however late the others come.
    {"", {{'x', 1, 1}, {'y', 2, 1.001}, {'y', 3, 2}, {'x', 4, 2}}, {{1, 2, 1.001}, {4, 3, 2}}, 2, 0, 0},
    {"", {{'x', 1, 1}, {'x', 2, 2}, {'x', 3, 3}, {'y', 4, 1}, {'y', 6, 3}}, {{1, 4, 1}, {3, 6, 3}}, 2, 0, 1},
    {"within=0.5", {{'x', 1, 1}, {'y', 2, 1.6}, {'x', 3, 1.7}}, {{3, 2, 1.7}}, 1, 0, 1},
    // A number that is none, and a stamp that is none, are as if they had not come.
    {"", {{'x', nan, 1}, {'x', 1, nan}, {'y', 2, 2}, {'x', 1, 2}}, {{1, 2, 2}}, 1, 1, 1},
    // The clock of both sources is set back; what came before holds nothing up.
    {"", {{'x', 1, 100}, {'x', 2, 5}, {'y', 3, 5}, {'y', 4, 6}, {'x', 5, 6}}, {{2, 3, 5}, {5, 4, 6}}, 2, 0, 1},
    {"when=y", {{'x', 1, 1}, {'y', 2, 2}, {'x', 3, 3}, {'x', 4, 4}, {'y', 5, 5}}, {{1, 2, 2}, {4, 5, 5}}, 3, 0, 0},
};

TEST(Join, SendsWhatItsSettingsSay)
{
    for (const Course& row : courses) {
        SCOPED_TRACE(&row - courses);
        PairBench bench(row._settings, "x", "y");
        for (const Arrival& arrival : row._arrivals) {
            if (arrival._part == 'x')
                bench.send<0>(arrival._value, arrival._stamp);
            else
                bench.send<1>(arrival._value, arrival._stamp);
        }
        for (const auto& [x, y, stamp] : row._expected) {
            const auto record = bench.next();
            EXPECT_EQ(record.getValue(), (Vec2<double>(x, y)));
            EXPECT_EQ(record.getTimeStamp(), Time(stamp));
        }
        await([&] { return bench.node().count("received") == row._arrivals.size(); });
        bench.node().stop();
        EXPECT_TRUE(bench.isIdle());
        EXPECT_EQ(bench.node().count("kept"), row._kept);
        EXPECT_EQ(bench.node().count("rejected value"), row._rejectedValues);
        EXPECT_EQ(bench.node().count("rejected time stamp"), row._rejectedStamps);
    }
}

TEST(Join, WithWhenAnyEachRecordSendsOnceAllPartsHaveCome)
{
    PairBench bench("when=any", "x", "y");
    bench.send<0>(1.0, 1.0);
    bench.send<1>(2.0, 1.0);
    EXPECT_EQ(bench.next().getValue(), (Vec2<double>(1, 2)));
    bench.send<0>(3.0, 1.0);
    EXPECT_EQ(bench.next().getValue(), (Vec2<double>(3, 2)));
    bench.send<1>(4.0, 2.0);
    EXPECT_EQ(bench.next().getValue(), (Vec2<double>(3, 4)));
}

const Matrix4<float> pose = [] { // moved by 1 2 3, turned by 90 degrees about z
    const float elements[] = {0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3, 0, 0, 0, 1};
    return Matrix4<float>(elements, false);
}();

TEST(Join, PositionAndRotationMakeAMatrix)
{
    JoinBench<Matrix4<float>, Vec3<float>, Rotation> bench("parts=pose", "position", "rotation");
    bench.send<0>(Vec3<float>(1, 2, 3), 1.0);
    bench.send<1>(Rotation(0, 0, 3, 3), 1.0);
    expectNear(toNumbers(bench.next().getValue()), toNumbers(pose), 1e-6);
}

TEST(Join, ARotationWithoutDirectionIsRejected)
{
    JoinBench<Rotation, float, float, float, float> bench("", "x", "y", "z", "w");
    for (const float w : {0.0F, 2.0F}) {
        bench.send<0>(0.0F, w);
        bench.send<1>(0.0F, w);
        bench.send<2>(0.0F, w);
        bench.send<3>(w, w);
    }
    EXPECT_EQ(bench.next().getValue(), Rotation());
    bench.node().stop();
    EXPECT_EQ(bench.node().count("rejected value"), 1U);
}

TEST(Split, SendsPartsWithTheStampOfTheWhole)
{
    const struct {
        const char* _part;
        float _expected;
    } rows[] = {{"m11", 0}, {"m12", -1}, {"m34", 3}, {"m44", 1}};
    for (const auto& row : rows) {
        RelayBench<Split, Matrix4<float>, float> bench("", row._part);
        EXPECT_EQ(bench.pass(pose), row._expected);
    }
    EXPECT_EQ((RelayBench<Split, ColorRGBA, float>("", "a").pass({0.1F, 0.2F, 0.3F, 0.4F})), 0.4F);

    RelayBench<Split, Matrix4<float>, Vec3<float>> position("parts=pose", "position");
    position.send(pose, 7.5);
    const auto record = position.next();
    EXPECT_EQ(record.getValue(), (Vec3<float>(1, 2, 3)));
    EXPECT_EQ(record.getTimeStamp(), Time(7.5));
}

TEST(Split, OnlyMatricesThatTurnAndMoveArePoses)
{
    RelayBench<Split, Matrix4<float>, Rotation> bench("parts=pose", "rotation");
    Matrix4<float> wrong = pose;
    wrong[0] = 0.1F;
    bench.send(wrong);
    expectNear(toNumbers(bench.pass(pose)), {0, 0, half, half}, 1e-6);
    bench.node().stop();
    EXPECT_EQ(bench.node().count("rejected value"), 1U);
}

template <class NodeT, class T, class Out = T>
void expectNoNumberIsRejected(const std::string& settings, const std::string& out = "out")
{
    RelayBench<NodeT, T, Out> bench(settings, out);
    for (const double bad : {nan, std::numeric_limits<double>::infinity()})
        for (std::size_t i = 0; i < Components<T>::Count; ++i) {
            T value{};
            Components<T>::set(value, i, static_cast<typename Components<T>::Component>(bad));
            bench.send(value);
        }
    bench.pass(T());
    bench.node().stop();
    EXPECT_TRUE(bench.output().empty());
    EXPECT_EQ(bench.node().count("rejected value"), 2 * Components<T>::Count);
}

TEST(Filter, WhatIsNoNumberPassesNoneOfThem)
{
    expectNoNumberIsRejected<Align, Vec3<float>>("");
    expectNoNumberIsRejected<Align, Rotation>("");
    expectNoNumberIsRejected<Align, Matrix4<double>>("");
    expectNoNumberIsRejected<Convert, double, bool>("to=Bool");
    expectNoNumberIsRejected<Convert, double, long>("to=Long");
    expectNoNumberIsRejected<Convert, Vec3<double>, Rotation>("to=Rotation order=xyz");
    expectNoNumberIsRejected<Convert, Rotation, Vec3<float>>("to=Vec3f order=xyz");
    expectNoNumberIsRejected<Convert, Matrix3<float>, Rotation>("to=Rotation");
    expectNoNumberIsRejected<OnChange, Vec2<double>>("tolerance=1e12");
    expectNoNumberIsRejected<Split, Vec4<float>, float>("", "x");
    expectNoNumberIsRejected<Split, Matrix4<float>, Rotation>("parts=pose", "rotation");
}

TEST(PartsRefuse, AndNameWhatIsAllowed)
{
    ManualClock clock;
    expectRefused(std::make_unique<Join>(clock), "type=Vec2f",
                  {{"type=Float", "'type'"},
                   {"type=Vec3f parts=pose", "pose with Matrix4f and Matrix4d"},
                   {"type=Vec2f when=z", "one of together, any, x, y"},
                   {"type=Matrix4f parts=pose when=m11", "any, position, rotation"},
                   {"type=Vec2f when=x within=1", "only with when=together"},
                   {"type=Vec2f within=-1", "number from 0"}});
    expectRefused(std::make_unique<Split>(clock), "type=Vec2f", {{"type=Matrix3f parts=pose", "'parts'"}});
}

} // namespace
} // namespace Trovio::Nodes
