#include "nodes/filters/OneEuro.h"
#include "tests/filters/RelayBench.h"
#include <array>

namespace Trovio::Nodes {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

struct Sample {
    double _stamp;
    double _value;
};
const std::vector<Sample> signal{{0, 1}, {.01, 1.2}, {.02, .9}, {.05, 5}, {.06, 5.1}};

Rotation aboutAxis(double angle)
{
    // The axis is (2, 3, 6) / 7.
    const double s = std::sin(angle / 2) / 7;
    return {float(2 * s), float(3 * s), float(6 * s), float(std::cos(angle / 2))};
}

double angleOf(const Rotation& rotation)
{
    return 2 * std::atan2(rotation[2] * 7.0 / 6.0, double(rotation[3]));
}

const struct {
    const char* _settings;
    std::vector<double> _expected; // computed by another program from the formula
} courses[] = {{"", {1, 1.011823479, 1.005212766, 1.638786571, 1.843404501}},
               {"cutoff=1 beta=0.5", {1, 1.018177919, 1.009060462, 3.744563707, 4.305329402}},
               {"derivative=10 cutoff=3 beta=0.02", {1, 1.033082055, 1.011171611, 2.893059599, 3.349054423}}};

TEST(OneEuroCourse, ForNumbers)
{
    for (const auto& row : courses) {
        RelayBench<OneEuro, Vec2<double>> bench(row._settings);
        for (std::size_t i = 0; i < signal.size(); ++i) {
            const auto value = bench.pass({signal[i]._value, 7.0}, signal[i]._stamp);
            expectNear(toNumbers(value), {row._expected[i], 7.0}, 1e-9);
        }
    }
}

TEST(OneEuroCourse, ForRotationsAboutOneAxisIsThatOfTheirAngle)
{
    for (const auto& row : courses) {
        // A tenth of the angle leaves the shorter way the right one; beta is for each unit, so it grows tenfold.
        std::string settings = row._settings;
        if (const auto beta = settings.find("beta="); beta != std::string::npos)
            settings = settings.substr(0, beta) + "beta=" + std::to_string(10 * std::stod(settings.substr(beta + 5)));
        RelayBench<OneEuro, Rotation> bench(settings);
        float sign = 1.0F;
        for (std::size_t i = 0; i < signal.size(); ++i) {
            Rotation rotation = aboutAxis(signal[i]._value / 10);
            for (std::size_t k = 0; k < 4; ++k)
                rotation[k] *= 3 * sign; // neither length nor side of the sphere matter
            EXPECT_NEAR(std::abs(angleOf(bench.pass(rotation, signal[i]._stamp))), row._expected[i] / 10, 1e-6);
            sign = -sign;
        }
    }
}

TEST(OneEuroStamp, ThatDoesNotRiseIsRejectedAndLeavesTheFilterAsItWas)
{
    // They come between the second and the third record of the signal.
    for (const std::vector<double>& stamps :
         {std::vector<double>{0.01, 0.01}, {0.01 + 1e-12}, {-3600.0}, {nan, infinity}}) {
        RelayBench<OneEuro, double> bench("cutoff=1 beta=0.5");
        bench.pass(1.0, 0.0);
        bench.pass(1.2, 0.01);
        for (const double stamp : stamps)
            bench.send(1.2, stamp);
        EXPECT_NEAR(bench.pass(0.9, stamps.back() <= 0.01 ? stamps.back() + 0.01 : 0.02), 1.009060462, 1e-9);
        bench.node().stop();
        EXPECT_EQ(bench.node().count("rejected time stamp"), stamps.size());
    }
}

TEST(OneEuro, RecoversFromAnyNumbers)
{
    RelayBench<OneEuro, double> bench("beta=1e9 cutoff=1e6 derivative=1e6");
    const double most = std::numeric_limits<double>::max();
    double stamp = 0.0;
    for (const double value : {0.0, most, -most, most, 0.0})
        EXPECT_TRUE(std::isfinite(bench.pass(value, stamp += 1e-6)));
    EXPECT_TRUE(std::isfinite(bench.pass(1.0, 1e300)));
    EXPECT_NEAR(bench.pass(1.0, 2e300), 1.0, 1e-9);
}

TEST(OneEuro, OppositeRotationsGiveARotation)
{
    RelayBench<OneEuro, Rotation> bench("");
    bench.pass(Rotation(0, 0, 0, 1), 0.0);
    const auto half = toNumbers(bench.pass(Rotation(0, 0, 1, 0), 0.16)); // about half the way
    EXPECT_NEAR(std::hypot(half[2], half[3]), 1.0, 1e-6);
}

} // namespace
} // namespace Trovio::Nodes
