#include "nodes/filters/Clamp.h"
#include "nodes/filters/DeadZone.h"
#include "nodes/filters/OneEuro.h"
#include "nodes/filters/Scale.h"
#include "nodes/filters/convert/Align.h"
#include "nodes/filters/convert/Axes.h"
#include "nodes/filters/convert/Convert.h"
#include "tests/filters/RelayBench.h"

namespace Trovio::Nodes {
namespace {

using Numbers = std::vector<double>;

template <class NodeT, class T, class Out = T>
Numbers through(const std::string& settings, const Numbers& in)
{
    RelayBench<NodeT, T, Out> bench(settings);
    bench.send(fromNumbers<T>(in), 12.5);
    const Data<Out> record = bench.next();
    EXPECT_EQ(record.getTimeStamp(), Time(12.5));
    return toNumbers(record.getValue());
}

template <class T, class Out>
Numbers converted(const std::string& settings, const Numbers& in)
{
    return through<Convert, T, Out>("to=" + TypeName<Out>::getName() + " " + settings, in);
}

constexpr double half = 0.70710678118654752; // sine and cosine of 45 degrees
constexpr double radians30 = 0.52359877559829887;
constexpr const char* turnedRoom = "rotation='0 0 1 1' scale=2 translation='1 2 3'";

const struct {
    Numbers (*_through)(const std::string& settings, const Numbers& in);
    const char* _settings;
    Numbers _in, _expected;
} formulas[] = {
    {through<Scale, Vec3<double>>, "", {1.5, -2, 3}, {1.5, -2, 3}},
    {through<Scale, Vec2<float>>, "gain=-2 offset=1", {3, 0.25}, {-5, 0.5}},
    {through<Scale, Color>, "gain='1 2 3' offset='0 0 1'", {1, 1, 1}, {1, 2, 4}},
    {through<Scale, long>, "gain=0.5", {-5}, {-3}},

    {through<DeadZone, Vec2<double>>, "zone=0.2", {0.2, -0.19}, {0, 0}},
    {through<DeadZone, Vec2<double>>, "zone=0.2", {1, -1}, {1, -1}},
    {through<DeadZone, Vec2<double>>, "zone=0.2", {0.6, -0.28}, {0.5, -0.1}},
    {through<DeadZone, double>, "zone=3 full=inf", {-10}, {-7}},
    {through<DeadZone, Vec2<float>>, "centre='5 0' zone='1 0' full=2", {6.5, -3}, {6, -3}},
    {through<DeadZone, long>, "zone=2 full=4", {3}, {2}},
    {through<Clamp, Vec2<float>>, "", {-3e38, 3e38}, {-3e38F, 3e38F}},
    {through<Clamp, Vec3<float>>, "low=-1 high=2", {-5, 0.5, 5}, {-1, 0.5, 2}},
    {through<Clamp, Vec2<double>>, "low='-inf 0' high='0 inf'", {3, -3}, {0, 0}},
    {through<Clamp, double>, "low=4 high=4", {9}, {4}},

    {through<Axes, Vec4<float>>, "", {1, 2, 3, 4}, {1, 2, 3, 4}},
    {through<Axes, Vec3<float>>, "axes=xZy", {1, 2, 3}, {1, -3, 2}},
    {through<Axes, Vec2<float>>, "unit=cm axes=yX", {150, 20}, {0.2, -1.5}},
    {through<Axes, Vec3<double>>, "unit=in", {1, 10, 39.370078740157481}, {0.0254, 0.254, 1}},
    {through<Axes, double>, "unit=deg axes=X", {-30}, {radians30}},
    // 90 degrees about x becomes 90 degrees about the axis that x has become.
    {through<Axes, Rotation>, "axes=zxy", {half, 0, 0, half}, {0, half, 0, half}},
    {through<Axes, Rotation>, "axes=xyZ", {half, 0, 0, half}, {-half, 0, 0, half}},
    {through<Axes, Rotation>, "axes=xyZ", {0, 0, half, half}, {0, 0, half, half}},
    {through<Axes, Rotation>, "order=wxyz", {half, 0, half, 0}, {0, half, 0, half}},
    {through<Axes, Rotation>, "order=XYZw", {half, 0, 0, half}, {-half, 0, 0, half}},
    {through<Axes, Rotation>, "", {0, 3, 0, 4}, {0, 0.6, 0, 0.8}},
    {through<Axes, Matrix4<double>>,
     "axes=yXz unit=cm",
     {1, 2, 3, 100, 4, 5, 6, 200, 7, 8, 9, 300, 0, 0, 0, 1},
     {5, -4, 6, 2, -2, 1, -3, -1, 8, -7, 9, 3, 0, 0, 0, 1}},

    {converted<double, float>, "", {0.1}, {0.1F}},
    {converted<float, long>, "", {-2.5}, {-3}},
    {converted<long, bool>, "threshold=3", {3}, {1}},
    {converted<double, bool>, "threshold=-1", {-1.001}, {0}},
    {converted<bool, double>, "", {1}, {1}},
    {converted<Time, double>, "", {1.7e9}, {1.7e9}},
    {converted<Vec3<double>, Color>, "", {0.25, 0.5, 1}, {0.25, 0.5, 1}},
    {converted<Vec4<double>, Rotation>, "", {0, 0, -3, 4}, {0, 0, -0.6, 0.8}},
    {converted<Rotation, Vec4<float>>, "", {0, 0, 3, 4}, {0, 0, 3, 4}},
    // 90 degrees about one axis, in radians, degrees, negated, and in another component.
    {converted<Vec3<float>, Rotation>, "order=zxy", {0, 0, 1.57079632679}, {0, 0, half, half}},
    {converted<Vec3<float>, Rotation>, "order=zxy unit=deg", {90, 0, 0}, {half, 0, 0, half}},
    {converted<Vec3<float>, Rotation>, "order=xyz unit=deg components=xYz", {0, 90, 0}, {0, -half, 0, half}},
    {converted<Vec3<float>, Rotation>, "order=xyz unit=deg components=zyx", {90, 0, 0}, {0, 0, half, half}},
    // 90 degrees about two axes: which one is first matters.
    {converted<Vec3<double>, Rotation>, "order=xyz unit=deg", {90, 90, 0}, {0.5, 0.5, -0.5, 0.5}},
    {converted<Vec3<double>, Rotation>, "order=yxz unit=deg", {90, 90, 0}, {0.5, 0.5, 0.5, 0.5}},
    {converted<Vec3<double>, Rotation>, "order=xzy unit=deg", {90, 0, 90}, {0.5, 0.5, 0.5, 0.5}},
    {converted<Vec3<double>, Rotation>, "order=zyx unit=deg", {90, 0, 90}, {0.5, -0.5, 0.5, 0.5}},
    {converted<Vec3<double>, Rotation>, "order=yzx unit=deg", {0, 90, -90}, {0.5, 0.5, -0.5, 0.5}},
    {converted<Rotation, Vec3<double>>, "order=xyz unit=deg", {1, 1, 1, 1}, {90, 0, 90}},
    {converted<Rotation, Vec3<double>>, "order=xyz unit=deg components=zXy", {1, 1, 1, 1}, {90, -90, 0}},
    {converted<Rotation, Vec3<double>>, "order=zyx unit=deg", {1, 1, 1, 1}, {90, 90, 0}}, // one line
    {converted<Rotation, Vec3<double>>,
     "order=zxy",
     {0, 0, 0.25881904510252076, 0.96592582628906829},
     {0, 0, radians30}},
    {converted<Matrix3<float>, Rotation>, "", {0, -1, 0, 1, 0, 0, 0, 0, 1}, {0, 0, half, half}},
    {converted<Matrix3<double>, Rotation>, "", {-1, 0, 0, 0, 1, 0, 0, 0, -1}, {0, 1, 0, 0}},
    {converted<Rotation, Matrix3<double>>, "", {1, 1, 1, 1}, {0, 0, 1, 1, 0, 0, 0, 1, 0}},

    // Turned by 90 degrees about z, then twice as large, then moved.
    {through<Align, Vec3<float>>, turnedRoom, {1, 0, 5}, {1, 4, 13}},
    {through<Align, Rotation>, "rotation='0 0 1 1'", {half, 0, 0, half}, {0.5, 0.5, 0.5, 0.5}},
    {through<Align, Matrix3<float>>, "rotation='0 0 1 1'", {1, 0, 0, 0, 0, -1, 0, 1, 0}, {0, 0, 1, 1, 0, 0, 0, 1, 0}},
    {through<Align, Matrix4<double>>,
     turnedRoom,
     {1, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 5, 0, 0, 0, 1},
     {0, -1, 0, 1, 1, 0, 0, 4, 0, 0, 1, 13, 0, 0, 0, 1}}};

TEST(FilterFormula, GivesTheseNumbersAndKeepsTheStamp)
{
    for (const auto& row : formulas) {
        SCOPED_TRACE(&row - formulas);
        expectNear(row._through(row._settings, row._in), row._expected, 1e-6);
    }
}

TEST(Clamp, WholeNumbersInsideKeepEveryBit)
{
    RelayBench<Clamp, long> bench("low=0");
    EXPECT_EQ(bench.pass(9007199254740993L), 9007199254740993L);
}

/// The vector that a rotation makes of another.
Numbers rotated(const Numbers& q, const Numbers& v)
{
    const auto cross = [](const Numbers& a, const Numbers& b) {
        return Numbers{a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
    };
    const Numbers once = cross(q, v), twice = cross(q, once);
    Numbers result;
    for (std::size_t i = 0; i < 3; ++i)
        result.push_back(v[i] + 2 * q[3] * once[i] + 2 * twice[i]);
    return result;
}

TEST(Axes, RotatingAndChangingAxesMayChangePlaces)
{
    const Numbers rotation{0.18257418583505537, -0.36514837167011072, 0.54772255750516607, 0.73029674334022143};
    const Numbers vector{1, -2, 0.5};
    std::string order = "xyz";
    do {
        for (unsigned capitals = 0; capitals < 8; ++capitals) {
            std::string axes = "axes=" + order;
            for (std::size_t i = 0; i < 3; ++i)
                if (capitals >> i & 1U)
                    axes[5 + i] = static_cast<char>(axes[5 + i] - 'a' + 'A');
            SCOPED_TRACE(axes);
            const auto first = through<Axes, Vec3<float>>(axes, rotated(rotation, vector));
            const auto second =
                rotated(through<Axes, Rotation>(axes, rotation), through<Axes, Vec3<float>>(axes, vector));
            expectNear(first, second, 1e-5);
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

template <class NodeT>
void expectRefusedBy(std::initializer_list<std::pair<const char*, const char*>> rows, const char* good = "type=Vec2f")
{
    ManualClock clock;
    expectRefused(std::make_unique<NodeT>(clock), good, rows);
}

TEST(FilterRefuses, AndNamesWhatIsAllowed)
{
    expectRefusedBy<Scale>({{"type=Rotation", "'type': value 'Rotation' is not allowed; allowed: one of Color"},
                            {"queue=0", "integer from 1 to 65536"},
                            {"factor=1", "allowed: gain, label, offset, queue, type"},
                            {"type=Vec3f gain='1 2 3 4'", "one number, or 3, from -1e+12 to 1e+12"},
                            {"type=Vec3f offset='1 2'", "'offset': value '1 2'"},
                            {"gain=two", "'gain'"},
                            {"gain=inf", "'gain'"}});
    expectRefusedBy<DeadZone>({{"zone=-1", "from 0 to"}, {"zone=1 full=1", "above those of 'zone'"}});
    expectRefusedBy<Clamp>(
        {{"low=nan", "from -inf to inf"}, {"type=Vec2f low='0 3' high=2", "not above those of 'high'"}});
    expectRefusedBy<OneEuro>(
        {{"type=String", "Rotation[]"}, {"cutoff=0", "'cutoff'"}, {"beta=-1", "number from 0 to"}});
    expectRefusedBy<Align>({{"type=Rotation scale=2", "positions and Matrix4"},
                            {"type=Vec3f rotation='0 0 0 0'", "not all of them 0"},
                            {"type=Vec3f rotation=1", "four numbers"},
                            {"type=Vec3f scale=0", "number from"}},
                           "type=Vec3f");
    expectRefusedBy<Convert>({{"type=Vec2f", "'to'"},
                              {"type=Vec2f to=Vec3f", "what Vec2f can become: Vec2d, Vec2f"},
                              {"type=Float to=Long threshold=1", "to=Bool"},
                              {"type=Vec3f to=Color order=xyz", "Vec3f or Vec3d to Rotation, or back"},
                              {"type=Vec3f to=Rotation", "'order': value ''"},
                              {"type=Rotation to=Vec3f order=zxz", "each of the letters x, y, z once"},
                              {"type=Rotation to=Vec3f order=zxY", "each of the letters x, y, z once"}},
                             "type=Vec2f to=Vec2d");
    expectRefusedBy<Axes>({{"axes=xxz", "each of the letters xyz once"},
                           {"axes=xyw", "xyz"},
                           {"axes=xy", "xyz"},
                           {"unit=mile", "one of m, cm, mm, in, ft, rad, deg"},
                           {"type=Rotation unit=deg", "all but Rotation and Matrix3"},
                           {"type=Matrix3f unit=cm", "all but Rotation and Matrix3"},
                           {"order=wxyz", "only with a type that it means something for: Rotation"},
                           {"type=Rotation order=xyz", "xyzw once"}});
}

} // namespace
} // namespace Trovio::Nodes
