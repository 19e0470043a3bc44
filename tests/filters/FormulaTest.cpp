#include "nodes/filters/Axes.h"
#include "nodes/filters/Clamp.h"
#include "nodes/filters/DeadZone.h"
#include "nodes/filters/OneEuro.h"
#include "nodes/filters/Scale.h"
#include "tests/filters/RelayBench.h"

namespace Trovio::Nodes {
namespace {

using Numbers = std::vector<double>;

template <class NodeT, class T>
Numbers through(const std::string& settings, const Numbers& in)
{
    RelayBench<NodeT, T> bench(settings);
    bench.send(fromNumbers<T>(in), 12.5);
    const Data<T> record = bench.next();
    EXPECT_EQ(record.getTimeStamp(), Time(12.5));
    return toNumbers(record.getValue());
}

struct Formula {
    const char* _name;
    Numbers (*_through)(const std::string& settings, const Numbers& in);
    const char* _settings;
    Numbers _in;
    Numbers _expected;
};
class FilterFormula : public ::testing::TestWithParam<Formula> {};

TEST_P(FilterFormula, GivesTheseNumbersAndKeepsTheStamp)
{
    const auto& row = GetParam();
    expectNear(row._through(row._settings, row._in), row._expected, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(
    Scale, FilterFormula,
    ::testing::Values(Formula{"NothingAsked", through<Scale, Vec3<double>>, "", {1.5, -2, 3}, {1.5, -2, 3}},
                      Formula{"OneForAll", through<Scale, Vec2<float>>, "gain=-2 offset=1", {3, 0.25}, {-5, 0.5}},
                      Formula{"OneForEach", through<Scale, Color>, "gain='1 2 3' offset='0 0 1'", {1, 1, 1}, {1, 2, 4}},
                      Formula{"WholeNumbersAreRounded", through<Scale, long>, "gain=0.5", {-5}, {-3}}),
    [](const auto& row) { return std::string(row.param._name); });

INSTANTIATE_TEST_SUITE_P(
    DeadZone, FilterFormula,
    ::testing::Values(
        Formula{"Inside", through<DeadZone, Vec2<double>>, "zone=0.2", {0.2, -0.19}, {0, 0}},
        Formula{"FullStaysFull", through<DeadZone, Vec2<double>>, "zone=0.2", {1, -1}, {1, -1}},
        Formula{"Between", through<DeadZone, Vec2<double>>, "zone=0.2", {0.6, -0.28}, {0.5, -0.1}},
        Formula{"Moved", through<DeadZone, double>, "zone=3 full=inf", {-10}, {-7}},
        Formula{"AroundACentre", through<DeadZone, Vec2<float>>, "centre='5 0' zone='1 0' full=2", {6.5, -3}, {6, -3}},
        Formula{"WholeNumbers", through<DeadZone, long>, "zone=2 full=4", {3}, {2}}),
    [](const auto& row) { return std::string(row.param._name); });

INSTANTIATE_TEST_SUITE_P(
    Clamp, FilterFormula,
    ::testing::Values(Formula{"NoBounds", through<Clamp, Vec2<float>>, "", {-3e38, 3e38}, {-3e38F, 3e38F}},
                      Formula{"OneForAll", through<Clamp, Vec3<float>>, "low=-1 high=2", {-5, 0.5, 5}, {-1, 0.5, 2}},
                      Formula{"OneForEach", through<Clamp, Vec2<double>>, "low='-inf 0' high='0 inf'", {3, -3}, {0, 0}},
                      Formula{"ASingleValue", through<Clamp, double>, "low=4 high=4", {9}, {4}}),
    [](const auto& row) { return std::string(row.param._name); });

TEST(Clamp, WholeNumbersInsideKeepEveryBit)
{
    RelayBench<Clamp, long> bench("low=0");
    EXPECT_EQ(bench.pass(9007199254740993L), 9007199254740993L);
}

constexpr double half = 0.70710678118654752; // sine and cosine of 45 degrees
constexpr double radians30 = 0.52359877559829887;

INSTANTIATE_TEST_SUITE_P(
    Axes, FilterFormula,
    ::testing::Values(
        Formula{"NothingAsked", through<Axes, Vec4<float>>, "", {1, 2, 3, 4}, {1, 2, 3, 4}},
        Formula{"SwappedAndNegated", through<Axes, Vec3<float>>, "axes=xZy", {1, 2, 3}, {1, -3, 2}},
        Formula{"Centimetres", through<Axes, Vec2<float>>, "unit=cm axes=yX", {150, 20}, {0.2, -1.5}},
        Formula{"Inches", through<Axes, Vec3<double>>, "unit=in", {1, 10, 39.370078740157481}, {0.0254, 0.254, 1}},
        Formula{"Degrees", through<Axes, double>, "unit=deg axes=X", {-30}, {radians30}},
        // 90 degrees about x becomes 90 degrees about the axis that x has become.
        Formula{
            "RotationsTurnWithTheAxes", through<Axes, Rotation>, "axes=zxy", {half, 0, 0, half}, {0, half, 0, half}},
        Formula{"MirrorsTurnTheOtherWay", through<Axes, Rotation>, "axes=xyZ", {half, 0, 0, half}, {-half, 0, 0, half}},
        Formula{
            "AxisAcrossTheMirrorStays", through<Axes, Rotation>, "axes=xyZ", {0, 0, half, half}, {0, 0, half, half}},
        Formula{"ScalarFirst", through<Axes, Rotation>, "order=wxyz", {half, 0, half, 0}, {0, half, 0, half}},
        Formula{"InverseArrives", through<Axes, Rotation>, "order=XYZw", {half, 0, 0, half}, {-half, 0, 0, half}},
        Formula{"LengthBecomesOne", through<Axes, Rotation>, "", {0, 3, 0, 4}, {0, 0.6, 0, 0.8}},
        Formula{"Transform",
                through<Axes, Matrix4<double>>,
                "axes=yXz unit=cm",
                {1, 2, 3, 100, 4, 5, 6, 200, 7, 8, 9, 300, 0, 0, 0, 1},
                {5, -4, 6, 2, -2, 1, -3, -1, 8, -7, 9, 3, 0, 0, 0, 1}}),
    [](const auto& row) { return std::string(row.param._name); });

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
constexpr auto by = refusalBy<NodeT>;

class FilterRefuses : public ::testing::TestWithParam<RefusedSettings> {};
TEST_P(FilterRefuses, AndNamesWhatIsAllowed)
{
    expectRefused(GetParam());
}
INSTANTIATE_TEST_SUITE_P(
    Setting, FilterRefuses,
    ::testing::Values(
        RefusedSettings{"TypeWithoutMeasure", by<Scale>, "type=Rotation",
                        "'type': value 'Rotation' is not allowed; allowed: one of Color"},
        RefusedSettings{"TextsAreNotSmoothed", by<OneEuro>, "type=String", "Rotation[]"},
        RefusedSettings{"NoQueue", by<Scale>, "queue=0", "integer from 1 to 65536"},
        RefusedSettings{"Unknown", by<Scale>, "factor=1", "allowed: gain, label, offset, queue, type"},
        RefusedSettings{"TooManyNumbers", by<Scale>, "type=Vec3f gain='1 2 3 4'",
                        "one number, or 3, from -1e+12 to 1e+12"},
        RefusedSettings{"TooFewNumbers", by<Scale>, "type=Vec3f offset='1 2'", "'offset': value '1 2'"},
        RefusedSettings{"NoNumber", by<Scale>, "gain=two", "'gain'"},
        RefusedSettings{"Endless", by<Scale>, "gain=inf", "'gain'"},
        RefusedSettings{"NegativeZone", by<DeadZone>, "zone=-1", "from 0 to"},
        RefusedSettings{"ZoneBeyondFull", by<DeadZone>, "zone=1 full=1", "above those of 'zone'"},
        RefusedSettings{"NotANumber", by<Clamp>, "low=nan", "from -inf to inf"},
        RefusedSettings{"BoundsCross", by<Clamp>, "type=Vec2f low='0 3' high=2", "not above those of 'high'"},
        RefusedSettings{"NoCutoff", by<OneEuro>, "cutoff=0", "'cutoff'"},
        RefusedSettings{"NegativeBeta", by<OneEuro>, "beta=-1", "number from 0 to"},
        RefusedSettings{"AxisTwice", by<Axes>, "axes=xxz", "each of the letters xyz once"},
        RefusedSettings{"AxisUnknown", by<Axes>, "axes=xyw", "xyz"},
        RefusedSettings{"AxisMissing", by<Axes>, "axes=xy", "xyz"},
        RefusedSettings{"UnitUnknown", by<Axes>, "unit=mile", "one of m, cm, mm, in, ft, rad, deg"},
        RefusedSettings{"UnitOfARotation", by<Axes>, "type=Rotation unit=deg", "all but Rotation and Matrix3"},
        RefusedSettings{"UnitOfAMatrix", by<Axes>, "type=Matrix3f unit=cm", "all but Rotation and Matrix3"},
        RefusedSettings{"OrderOfAVector", by<Axes>, "order=wxyz",
                        "only with a type that it means something for: Rotation"},
        RefusedSettings{"OrderTooShort", by<Axes>, "type=Rotation order=xyz", "xyzw once"}),
    [](const auto& row) { return std::string(row.param._name); });

} // namespace
} // namespace Trovio::Nodes
